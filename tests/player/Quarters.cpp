#include "Quarters.h"

void expectQuarters(const QImage &image, const QRect &area, const QuarterOrder &order,
                    const std::function<QRgb(const Clips::Yuv &)> &color)
{
    for (int i = 0; i < 4; ++i) {
        const int x = area.x() + area.width() * (i % 2 == 0 ? 1 : 3) / 4;
        const int y = area.y() + area.height() * (i < 2 ? 1 : 3) / 4;
        expectColor(image, x, y, color(Clips::kQuarters[order[static_cast<std::size_t>(i)]]));
    }
}
