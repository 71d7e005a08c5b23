// Pictures that go through Direct3D 11 textures, on the software device.
#include "Clips.h"
#include "PatternPicture.h"
#include "PlayerRun.h"
#include "Quarters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

// Which of the four colours the place shows, or 4 for black.
std::size_t nearest(const QImage &image, int x, int y, QRgb (*pfnColor)(const Clips::Yuv &))
{
    const QRgb actual = image.pixel(x, y);
    const auto distance = [actual](QRgb color) {
        return std::abs(qRed(actual) - qRed(color)) + std::abs(qGreen(actual) - qGreen(color)) +
               std::abs(qBlue(actual) - qBlue(color));
    };
    std::size_t nBest = 4;
    int nLeast = distance(qRgb(0, 0, 0));
    for (std::size_t i = 0; i < 4; ++i) {
        const int nDistance = distance(pfnColor(Clips::kQuarters[i]));
        if (nDistance < nLeast) {
            nLeast = nDistance;
            nBest = i;
        }
    }
    return nBest;
}

void expectTextures(const QImage &image, const QuarterOrder &order)
{
    ASSERT_EQ(image.size(), QSize(640, 480));
    expectQuarters(image, image.rect(), order, textureColor);
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
    expectTextures(shot("d3d11", ""), kUpright);
    expectTextures(shot("d3d11", "--renderer subimage"), kUpright);
}

TEST(Textures, turnedAndMirroredAsPlanesAre)
{
    for (const Turn &turn : kTurns) {
        SCOPED_TRACE(turn.pOptions);
        expectTextures(shot("d3d11", turn.pOptions), turn.order);
    }
}

TEST(Textures, showThePattern)
{
    constexpr int kFrames = 5;
    for (const char *pRenderer : {"yuv", "subimage"}) {
        SCOPED_TRACE(pRenderer);
        expectPattern(screenshotOf(patternArguments(kFrames) +
                                   QStringList{QStringLiteral("--format"), QStringLiteral("d3d11"),
                                               QStringLiteral("--renderer"), QLatin1String(pRenderer)}),
                      kFrames, textureColor);
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
                const std::size_t nColor = nearest(planes, x, y, nv12Color);
                const bool blInside = nearest(planes, x - 4, y - 4, nv12Color) == nColor &&
                                      nearest(planes, x + 4, y - 4, nv12Color) == nColor &&
                                      nearest(planes, x - 4, y + 4, nv12Color) == nColor &&
                                      nearest(planes, x + 4, y + 4, nv12Color) == nColor;
                if (blInside) {
                    ++counts[nColor];
                    ASSERT_EQ(nearest(texture, x, y, textureColor), nColor) << x << ',' << y;
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
