// The picture adjustments' matrix, against double precision.
#include "d3d11/ColorMatrix.h"

#include "QtMessages.h"

#include <gtest/gtest.h>

#include <QDebug>

#include <array>
#include <cmath>

namespace xelttest {
namespace {

constexpr double k_dPi = 3.141592653589793;

using Matrix = std::array<std::array<double, 4>, 4>;

Matrix product(const Matrix &a, const Matrix &b)
{
    Matrix result{};
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = 0; j < 4; ++j) {
            for (size_t k = 0; k < 4; ++k) {
                result[i][j] += a[i][k] * b[k][j];
            }
        }
    }
    return result;
}

Matrix brightness(double b)
{
    return {{{1, 0, 0, b}, {0, 1, 0, b}, {0, 0, 1, b}, {0, 0, 0, 1}}};
}

Matrix contrast(double dContrast)
{
    const double c = dContrast + 1;
    const double t = (1 - c) / 2;
    return {{{c, 0, 0, t}, {0, c, 0, t}, {0, 0, c, t}, {0, 0, 0, 1}}};
}

Matrix saturation(double dSaturation)
{
    const double s = dSaturation + 1;
    const double r = (1 - s) * 0.3086;
    const double g = (1 - s) * 0.6094;
    const double b = (1 - s) * 0.082;
    return {{{r + s, g, b, 0}, {r, g + s, b, 0}, {r, g, b + s, 0}, {0, 0, 0, 1}}};
}

// The rotation about the unit vector (1, 1, 1) / sqrt(3), written out by the textbook.
Matrix hue(double dHue)
{
    const double co = std::cos(dHue * k_dPi);
    const double si = std::sin(dHue * k_dPi);
    const double k = 1 / std::sqrt(3.0);
    const double same = co + k * k * (1 - co);
    const double up = k * k * (1 - co) + k * si;
    const double down = k * k * (1 - co) - k * si;
    return {{{same, down, up, 0}, {up, same, down, 0}, {down, up, same, 0}, {0, 0, 0, 1}}};
}

void expectNear(const QMatrix4x4 &actual, const Matrix &expected, double dTolerance = 2e-6)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_NEAR(static_cast<double>(actual(i, j)),
                        expected[static_cast<size_t>(i)][static_cast<size_t>(j)], dTolerance)
                << "row " << i << ", column " << j;
        }
    }
}

std::array<double, 3> apply(const QMatrix4x4 &matrix, float r, float g, float b)
{
    const QVector4D result = matrix * QVector4D(r, g, b, 1);
    return {static_cast<double>(result.x()), static_cast<double>(result.y()),
            static_cast<double>(result.z())};
}

void expectColor(const std::array<double, 3> &actual, double r, double g, double b)
{
    EXPECT_NEAR(actual[0], r, 2e-6);
    EXPECT_NEAR(actual[1], g, 2e-6);
    EXPECT_NEAR(actual[2], b, 2e-6);
}

TEST(ColorMatrixTest, StartsNeutralAndInvalid)
{
    const ColorMatrix colors;
    EXPECT_FALSE(colors.isValid());
    EXPECT_EQ(colors.hue(), 0.0);
    EXPECT_EQ(colors.saturation(), 0.0);
    EXPECT_EQ(colors.contrast(), 0.0);
    EXPECT_EQ(colors.brightness(), 0.0);
    EXPECT_TRUE(colors.matrix().isIdentity());
}

TEST(ColorMatrixTest, NeutralIsExactlyTheIdentity)
{
    ColorMatrix colors;
    colors.updateColorMatrix();
    EXPECT_TRUE(colors.isValid());
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_EQ(colors.matrix()(i, j), i == j ? 1.0f : 0.0f);
        }
    }
}

TEST(ColorMatrixTest, WritesOneDebugLine)
{
    QtMessages messages;
    ColorMatrix colors;
    colors.setBrightness(0.25);
    colors.updateColorMatrix();
    const std::vector<QtMessage> vecMessages = messages.take();
    QString sMatrix;
    QDebug(&sMatrix).nospace() << colors.matrix();
    ASSERT_EQ(vecMessages.size(), 1u);
    EXPECT_EQ(vecMessages[0], debugLine("color mat: " + sMatrix.toStdString()));
    EXPECT_FALSE(vecMessages[0].blHasPosition);
    EXPECT_NE(vecMessages[0].sText.find("0.25"), std::string::npos);
}

TEST(ColorMatrixTest, TheNeutralLineShowsTheIdentity)
{
    QtMessages messages;
    ColorMatrix colors;
    colors.updateColorMatrix();
    const std::vector<QtMessage> vecMessages = messages.take();
    ASSERT_EQ(vecMessages.size(), 1u);
    const std::string &sText = vecMessages[0].sText;
    EXPECT_EQ(sText.rfind("color mat: QMatrix4x4(", 0), 0u) << sText;
    QString sNumbers = QString::fromStdString(sText.substr(sText.find('\n')));
    sNumbers.remove(')');
    QStringList lines = sNumbers.split('\n', Qt::SkipEmptyParts);
    for (QString &sLine : lines) {
        sLine = sLine.simplified();
    }
    EXPECT_EQ(lines, QStringList({"1 0 0 0", "0 1 0 0", "0 0 1 0", "0 0 0 1"}));
}

TEST(ColorMatrixTest, BrightnessIsAdded)
{
    ColorMatrix colors;
    colors.setBrightness(0.1);
    colors.updateColorMatrix();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(colors.matrix()(i, 3), 0.1f);
    }
    EXPECT_EQ(colors.matrix()(3, 3), 1.0f);
    expectColor(apply(colors.matrix(), 0.2f, 0.3f, 0.4f), 0.3, 0.4, 0.5);
}

TEST(ColorMatrixTest, ContrastScalesAboutMidGrey)
{
    ColorMatrix colors;
    colors.setContrast(1.0);
    colors.updateColorMatrix();
    expectColor(apply(colors.matrix(), 0.5f, 0.75f, 0.25f), 0.5, 1.0, 0.0);
}

TEST(ColorMatrixTest, WithoutSaturationEveryChannelIsTheLuminance)
{
    ColorMatrix colors;
    colors.setSaturation(-1.0);
    colors.updateColorMatrix();
    const double dGrey = 0.3086 * 0.2 + 0.6094 * 0.5 + 0.082 * 0.9;
    expectColor(apply(colors.matrix(), 0.2f, 0.5f, 0.9f), dGrey, dGrey, dGrey);
}

TEST(ColorMatrixTest, HalfATurnOfHue)
{
    ColorMatrix colors;
    colors.setHue(1.0);
    colors.updateColorMatrix();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(static_cast<double>(colors.matrix()(i, j)), i == j ? -1.0 / 3 : 2.0 / 3, 1e-6);
        }
    }
}

TEST(ColorMatrixTest, AThirdOfAWholeTurnMovesTheChannelsOn)
{
    ColorMatrix colors;
    colors.setHue(2.0 / 3);
    colors.updateColorMatrix();
    expectColor(apply(colors.matrix(), 1.0f, 0.0f, 0.0f), 0, 1, 0);
    expectColor(apply(colors.matrix(), 0.0f, 1.0f, 0.0f), 0, 0, 1);
}

TEST(ColorMatrixTest, GreyStaysGreyUnderHueAndSaturation)
{
    ColorMatrix colors;
    colors.setHue(0.37);
    colors.setSaturation(0.8);
    colors.updateColorMatrix();
    expectColor(apply(colors.matrix(), 0.5f, 0.5f, 0.5f), 0.5, 0.5, 0.5);
}

// The four do not commute, so a wrong order shows.
TEST(ColorMatrixTest, IsTheProductInOrder)
{
    for (const double dHue : {-0.75, 0.0, 0.3}) {
        for (const double dSaturation : {-0.5, 0.0, 0.7}) {
            for (const double dContrast : {-0.4, 0.0, 0.9}) {
                for (const double dBrightness : {-0.2, 0.0, 0.15}) {
                    ColorMatrix colors;
                    colors.setHue(dHue);
                    colors.setSaturation(dSaturation);
                    colors.setContrast(dContrast);
                    colors.setBrightness(dBrightness);
                    colors.updateColorMatrix();
                    expectNear(colors.matrix(),
                               product(product(product(brightness(dBrightness), contrast(dContrast)),
                                               saturation(dSaturation)),
                                       hue(dHue)));
                }
            }
        }
    }
}

TEST(ColorMatrixTest, EachSetterClearsTheValidFlag)
{
    ColorMatrix colors;
    for (void (ColorMatrix::*set)(double) : {&ColorMatrix::setHue, &ColorMatrix::setSaturation,
                                             &ColorMatrix::setContrast, &ColorMatrix::setBrightness}) {
        colors.updateColorMatrix();
        ASSERT_TRUE(colors.isValid());
        (colors.*set)(0.5);
        EXPECT_FALSE(colors.isValid());
    }
    EXPECT_EQ(colors.hue(), 0.5);
    EXPECT_EQ(colors.saturation(), 0.5);
    EXPECT_EQ(colors.contrast(), 0.5);
    EXPECT_EQ(colors.brightness(), 0.5);
    colors.updateColorMatrix();
    colors.invalidate();
    EXPECT_FALSE(colors.isValid());
}

TEST(ColorMatrixTest, AnUpdateStartsAfresh)
{
    ColorMatrix colors;
    colors.setBrightness(0.3);
    colors.setHue(0.4);
    colors.updateColorMatrix();
    colors.setBrightness(0.0);
    colors.setHue(0.0);
    colors.updateColorMatrix();
    EXPECT_EQ(colors.matrix(), QMatrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
}

} // namespace
} // namespace xelttest
