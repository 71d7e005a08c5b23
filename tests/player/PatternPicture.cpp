#include "PatternPicture.h"

#include "PatternSource.h"

#include <gtest/gtest.h>

namespace {

const QSize kSize(640, 480);

Clips::Yuv yuv(const YuvColor &color)
{
    return {color.nY, color.nU, color.nV};
}

} // namespace

QStringList patternArguments(int nFrames)
{
    const QString sSize = QStringLiteral("%1x%2").arg(kSize.width()).arg(kSize.height());
    return {QStringLiteral("--pattern"), QStringLiteral("--pattern-size"), sSize, QStringLiteral("--frames"),
            QString::number(nFrames),    QStringLiteral("--size"),         sSize};
}

Clips::Yuv patternBar(int nBar)
{
    return yuv(PatternSource::barColor(nBar));
}

void expectPattern(const QImage &image, int nFrames, const std::function<QRgb(const Clips::Yuv &)> &color)
{
    ASSERT_EQ(image.size(), kSize);
    for (int i = 0; i < PatternSource::kBars; ++i) {
        expectColor(image, 40 + 80 * i, 200, color(patternBar(i)));
    }
    const PatternSource pattern({kSize, 25.0}, FrameLayout::Yv12);
    const QPoint box = pattern.box(nFrames - 1).center();
    expectColor(image, box.x(), box.y(), color(yuv(PatternSource::kBoxColor)));
    for (const int x : {1, 200, 400, 638}) {
        expectColor(image, x, 270, color({16 + 219 * x / 639, 128, 128}));
    }
    expectColor(image, 5, 470, color(yuv(PatternSource::kGroundColor)));
}
