#include "ImageCompare.h"

#include <QDir>

#include <algorithm>
#include <cmath>

namespace xelttest {

namespace {

QImage asImage(const ReferenceImage &image)
{
    QImage out(image.nWidth, image.nHeight, QImage::Format_RGB32);
    for (int y = 0; y < image.nHeight; ++y) {
        for (int x = 0; x < image.nWidth; ++x) {
            const double *pRgb = image.pixel(x, y);
            out.setPixel(
                x, y, qRgb(int(std::lround(pRgb[0])), int(std::lround(pRgb[1])), int(std::lround(pRgb[2]))));
        }
    }
    return out;
}

// Differences times 16; ignored pixels are blue.
QImage differenceImage(const QImage &actual, const ReferenceImage &expected)
{
    QImage out(expected.nWidth, expected.nHeight, QImage::Format_RGB32);
    for (int y = 0; y < expected.nHeight; ++y) {
        for (int x = 0; x < expected.nWidth; ++x) {
            const auto aRgb = rgbAt(actual, x, y);
            const double *pRgb = expected.pixel(x, y);
            double dWorst = 0;
            for (size_t i = 0; i < 3; ++i) {
                dWorst = std::max(dWorst, std::abs(aRgb[i] - pRgb[i]));
            }
            const int nGrey = std::min(255, static_cast<int>(dWorst * 16));
            const bool blIgnored = expected.aIgnored[expected.index(x, y)] != 0;
            out.setPixel(x, y, blIgnored ? qRgb(0, 0, 255) : qRgb(nGrey, nGrey, nGrey));
        }
    }
    return out;
}

QString artifactBase(const QString &sName)
{
    const auto *pInfo = testing::UnitTest::GetInstance()->current_test_info();
    QString sBase = pInfo == nullptr ? QStringLiteral("comparison")
                                     : QStringLiteral("%1.%2").arg(pInfo->test_suite_name(), pInfo->name());
    if (!sName.isEmpty()) {
        sBase += QLatin1Char('.') + sName;
    }
    for (QChar &c : sBase) {
        c = c.isLetterOrNumber() || c == QLatin1Char('.') || c == QLatin1Char('-') ? c
                                                                                   : QChar(QLatin1Char('_'));
    }
    return QDir(artifactDir()).filePath(sBase);
}

std::string describe(const Difference &difference)
{
    return "greatest difference " + std::to_string(difference.dMax) + " at (" +
           std::to_string(difference.nWorstX) + ", " + std::to_string(difference.nWorstY) + "), mean " +
           std::to_string(difference.dMean) + ", compared " + std::to_string(difference.nCompared) +
           ", ignored " + std::to_string(difference.nIgnored);
}

} // namespace

bool Difference::within(const Tolerance &tolerance) const
{
    return blSameSize && nCompared > 0 && dMax <= tolerance.dMax && dMean <= tolerance.dMean &&
           nIgnored <= tolerance.dIgnoredShare * (nIgnored + nCompared);
}

std::array<int, 3> rgbAt(const QImage &image, int x, int y)
{
    const QRgb nPixel = reinterpret_cast<const QRgb *>(image.constScanLine(y))[x];
    return {qRed(nPixel), qGreen(nPixel), qBlue(nPixel)};
}

Difference compareImages(const QImage &actual, const ReferenceImage &expected)
{
    Difference result;
    result.blSameSize =
        actual.width() == expected.nWidth && actual.height() == expected.nHeight && actual.depth() == 32;
    if (!result.blSameSize) {
        return result;
    }
    double dSum = 0;
    for (int y = 0; y < expected.nHeight; ++y) {
        for (int x = 0; x < expected.nWidth; ++x) {
            if (expected.aIgnored[expected.index(x, y)] != 0) {
                ++result.nIgnored;
                continue;
            }
            ++result.nCompared;
            const auto aRgb = rgbAt(actual, x, y);
            const double *pRgb = expected.pixel(x, y);
            for (size_t i = 0; i < 3; ++i) {
                const double dDifference = std::abs(aRgb[i] - pRgb[i]);
                dSum += dDifference;
                if (dDifference > result.dMax) {
                    result.dMax = dDifference;
                    result.nWorstX = x;
                    result.nWorstY = y;
                }
            }
        }
    }
    result.dMean = result.nCompared > 0 ? dSum / (3.0 * result.nCompared) : 0.0;
    return result;
}

::testing::AssertionResult imageMatches(const QImage &actual, const ReferenceImage &expected,
                                        const Tolerance &tolerance, const QString &sName)
{
    const Difference difference = compareImages(actual, expected);
    if (!difference.blSameSize) {
        return ::testing::AssertionFailure()
               << "the picture is " << actual.width() << " x " << actual.height() << ", expected "
               << expected.nWidth << " x " << expected.nHeight;
    }
    if (difference.within(tolerance)) {
        return ::testing::AssertionSuccess() << describe(difference);
    }
    const QString sBase = artifactBase(sName);
    actual.convertToFormat(QImage::Format_RGB32).save(sBase + QStringLiteral(".actual.png"));
    asImage(expected).save(sBase + QStringLiteral(".expected.png"));
    differenceImage(actual, expected).save(sBase + QStringLiteral(".difference.png"));
    return ::testing::AssertionFailure()
           << describe(difference) << "; pictures: " << qPrintable(sBase) << ".*.png";
}

::testing::AssertionResult imageDiffers(const QImage &actual, const ReferenceImage &faulty,
                                        const Tolerance &tolerance)
{
    const Difference difference = compareImages(actual, faulty);
    if (difference.blSameSize && (difference.dMax > tolerance.dMax || difference.dMean > tolerance.dMean)) {
        return ::testing::AssertionSuccess() << describe(difference);
    }
    return ::testing::AssertionFailure() << "the fault goes unnoticed: " << describe(difference);
}

bool isUniform(const QImage &image, const std::array<int, 3> &aRgb, int nSlack)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto aPixel = rgbAt(image, x, y);
            for (size_t i = 0; i < 3; ++i) {
                if (std::abs(aPixel[i] - aRgb[i]) > nSlack) {
                    return false;
                }
            }
        }
    }
    return image.width() > 0 && image.height() > 0;
}

bool isBlack(const QImage &image)
{
    return isUniform(image, {0, 0, 0});
}

} // namespace xelttest
