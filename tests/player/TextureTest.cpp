// Pictures that go through Direct3D 11 textures, on the software device.
#include "Clips.h"
#include "PlayerRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int kTolerance = 3; // of 255, for each component

// BT.709 in the limited range, which the video processor takes every frame for.
std::array<int, 3> expectedColor(const Clips::Yuv &yuv)
{
    const double y = (yuv.nY - 16) / 219.0;
    const double u = (yuv.nU - 128) / 224.0;
    const double v = (yuv.nV - 128) / 224.0;
    const double aRgb[] = {y + 1.5748 * v, y - 0.18732 * u - 0.46812 * v, y + 1.8556 * u};
    std::array<int, 3> color{};
    for (std::size_t i = 0; i < 3; ++i) {
        color[i] = static_cast<int>(std::lround(255 * std::clamp(aRgb[i], 0.0, 1.0)));
    }
    return color;
}

// The same colours in the renderers' own conversion of NV12 planes.
std::array<int, 3> planeColor(const Clips::Yuv &yuv)
{
    const double y = yuv.nY - 0.0625 * 255.0;
    const double u = yuv.nU - 127.5;
    const double v = yuv.nV - 127.5;
    const double aRgb[] = {y + 1.13983 * v, y - 0.39465 * u - 0.58060 * v, y + 2.03211 * u};
    std::array<int, 3> color{};
    for (std::size_t i = 0; i < 3; ++i) {
        color[i] = static_cast<int>(std::lround(std::clamp(aRgb[i], 0.0, 255.0)));
    }
    return color;
}

// Which of the four colours the place shows, or 4 for black.
std::size_t nearest(const QImage &image, int x, int y, std::array<int, 3> (*pfnColor)(const Clips::Yuv &))
{
    const QRgb actual = image.pixel(x, y);
    const auto distance = [actual](const std::array<int, 3> &color) {
        return std::abs(qRed(actual) - color[0]) + std::abs(qGreen(actual) - color[1]) +
               std::abs(qBlue(actual) - color[2]);
    };
    std::size_t nBest = 4;
    int nLeast = distance({0, 0, 0});
    for (std::size_t i = 0; i < 4; ++i) {
        const int nDistance = distance(pfnColor(Clips::kQuarters[i]));
        if (nDistance < nLeast) {
            nLeast = nDistance;
            nBest = i;
        }
    }
    return nBest;
}

// Places in order: top left, top right, bottom left, bottom right.
void expectQuarters(const QImage &image, const std::array<int, 4> &order)
{
    ASSERT_EQ(image.size(), QSize(640, 480));
    for (int i = 0; i < 4; ++i) {
        const auto expected = expectedColor(Clips::kQuarters[order[static_cast<std::size_t>(i)]]);
        const QRgb actual = image.pixel(i % 2 == 0 ? 160 : 480, i < 2 ? 120 : 360);
        EXPECT_LE(std::abs(qRed(actual) - expected[0]), kTolerance) << i;
        EXPECT_LE(std::abs(qGreen(actual) - expected[1]), kTolerance) << i;
        EXPECT_LE(std::abs(qBlue(actual) - expected[2]), kTolerance) << i;
    }
}

QImage shot(const char *pFormat, const char *pOptions)
{
    QStringList asArguments{Clips::quarters(),        QStringLiteral("--frames"), QStringLiteral("5"),
                            QStringLiteral("--size"), QStringLiteral("640x480"),  QStringLiteral("--format"),
                            QLatin1String(pFormat)};
    asArguments += QString::fromLatin1(pOptions).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return screenshotOf(asArguments);
}

} // namespace

TEST(Textures, bothRenderersShowThem)
{
    expectQuarters(shot("d3d11", ""), {0, 1, 2, 3});
    expectQuarters(shot("d3d11", "--renderer subimage"), {0, 1, 2, 3});
}

TEST(Textures, turnedAndMirroredAsPlanesAre)
{
    const struct
    {
        const char *pOptions;
        std::array<int, 4> order;
    } aCases[] = {
        {"--fill --rotate 90", {2, 0, 3, 1}},
        {"--fill --rotate 90 --ccw", {1, 3, 0, 2}},
        {"--fill --rotate 180", {3, 2, 1, 0}},
        {"--fill --rotate 270", {1, 3, 0, 2}},
        {"--fill --mirror h", {1, 0, 3, 2}},
        {"--fill --mirror v", {2, 3, 0, 1}},
        {"--fill --rotate 90 --mirror h", {0, 2, 1, 3}},
    };
    for (const auto &entry : aCases) {
        SCOPED_TRACE(entry.pOptions);
        expectQuarters(shot("d3d11", entry.pOptions), entry.order);
    }
}

// Apart from the conversion it is the picture of the planes: every place that lies well inside a colour there
// shows that colour here.
TEST(Textures, standWhereThePlanesStand)
{
    for (const char *pOptions : {"", "--zoom 0.1,0.2,0.7,0.9", "--rect 40,30,500,400"}) {
        SCOPED_TRACE(pOptions);
        const QImage texture = shot("d3d11", pOptions);
        const QImage planes = shot("nv12", pOptions);
        ASSERT_EQ(texture.size(), planes.size());
        std::array<int, 5> counts{};
        for (int y = 4; y < 476; y += 3) {
            for (int x = 4; x < 636; x += 3) {
                const std::size_t nColor = nearest(planes, x, y, planeColor);
                const bool blInside = nearest(planes, x - 4, y - 4, planeColor) == nColor &&
                                      nearest(planes, x + 4, y - 4, planeColor) == nColor &&
                                      nearest(planes, x - 4, y + 4, planeColor) == nColor &&
                                      nearest(planes, x + 4, y + 4, planeColor) == nColor;
                if (blInside) {
                    ++counts[nColor];
                    ASSERT_EQ(nearest(texture, x, y, expectedColor), nColor) << x << ',' << y;
                }
            }
        }
        EXPECT_GT(*std::min_element(counts.begin(), counts.begin() + 4), 500) << "a quarter is not in sight";
    }
}

TEST(Textures, everyFrameIsTaken)
{
    const PlayerResult result = runPlayer(
        {Clips::quarters(), QStringLiteral("--fast"), QStringLiteral("--panes"), QStringLiteral("2"),
         QStringLiteral("--format"), QStringLiteral("d3d11"), QStringLiteral("--overlay")});
    EXPECT_FALSE(result.blCrashed);
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.asErrors, QStringList()) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
    ASSERT_EQ(result.panes.size(), 2U);
    for (const PaneLine &pane : result.panes) {
        EXPECT_EQ(pane.nDecoded, Clips::kFrames);
        EXPECT_EQ(pane.nPushed, Clips::kFrames);
        EXPECT_EQ(pane.nRefused, 0);
    }
}

TEST(Textures, needOpenGLES)
{
    const PlayerResult result = runPlayer({Clips::quarters(), QStringLiteral("--format"),
                                           QStringLiteral("d3d11"), QStringLiteral("--desktop-gl")});
    EXPECT_EQ(result.nStatus, 2);
    ASSERT_EQ(result.asErrors.size(), 1);
    EXPECT_TRUE(result.asErrors.first().contains(QStringLiteral("--format d3d11 needs OpenGL ES")));
}
