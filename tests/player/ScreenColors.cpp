#include "ScreenColors.h"

#include <gtest/gtest.h>

#include <QColor>

#include <algorithm>
#include <cmath>
#include <cstdlib>

QRgb rgb(double red, double green, double blue)
{
    const auto component = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, 0.0, 255.0)));
    };
    return qRgb(component(red), component(green), component(blue));
}

QRgb yv12Color(const Clips::Yuv &yuv)
{
    const double u = yuv.nU - 127.5;
    const double v = yuv.nV - 127.5;
    return rgb(yuv.nY + 1.4075 * v, yuv.nY - 0.3455 * u - 0.7169 * v, yuv.nY + 1.779 * u);
}

QRgb nv12Color(const Clips::Yuv &yuv)
{
    const double y = yuv.nY - 0.0625 * 255.0;
    const double u = yuv.nU - 127.5;
    const double v = yuv.nV - 127.5;
    return rgb(y + 1.13983 * v, y - 0.39465 * u - 0.58060 * v, y + 2.03211 * u);
}

QRgb textureColor(const Clips::Yuv &yuv)
{
    const double y = 255.0 * (yuv.nY - 16) / 219.0;
    const double u = 255.0 * (yuv.nU - 128) / 224.0;
    const double v = 255.0 * (yuv.nV - 128) / 224.0;
    return rgb(y + 1.5748 * v, y - 0.18732 * u - 0.46812 * v, y + 1.8556 * u);
}

bool isNear(QRgb one, QRgb other, int nTolerance)
{
    return std::abs(qRed(one) - qRed(other)) <= nTolerance &&
           std::abs(qGreen(one) - qGreen(other)) <= nTolerance &&
           std::abs(qBlue(one) - qBlue(other)) <= nTolerance;
}

void expectColor(const QImage &image, int x, int y, QRgb expected)
{
    ASSERT_TRUE(image.rect().contains(x, y));
    EXPECT_TRUE(isNear(image.pixel(x, y), expected))
        << "at " << x << ',' << y << ": " << qPrintable(QColor(image.pixel(x, y)).name()) << " instead of "
        << qPrintable(QColor(expected).name());
}
