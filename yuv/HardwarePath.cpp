#include "yuv/HardwarePath.h"

#include "d3d11/CLS_D3D11EGL.h"

#include <QApplication>
#include <QDesktopWidget>
#include <QScreen>
#include <QWidget>

namespace yuv {

void HandOverFrame(CLS_D3D11EGL *pHardware, void *pDevice, const void *pData, int32_t nLength)
{
    if (pHardware == nullptr) {
        return;
    }
    if (pHardware->Device() != pDevice) {
        pHardware->SetDevice(pDevice);
    }
    pHardware->SetFrame(pData, nLength);
}

void DestroyHardware(std::unique_ptr<CLS_D3D11EGL> &pHardware)
{
    if (pHardware != nullptr) {
        pHardware->DestroyEglResource();
        pHardware.reset();
    }
}

QRect DeviceRect(const QWidget &widget)
{
    const int nScreen = QApplication::desktop()->screenNumber(&widget);
    const QList<QScreen *> listScreens = QGuiApplication::screens();
    const bool blOnScreen = nScreen >= 0 && nScreen < listScreens.size();
    const double dRatio = blOnScreen ? listScreens.at(nScreen)->devicePixelRatio() : 1.0;
    QRect rcDevice = widget.rect();
    rcDevice.setSize(QSize(geometry::TruncateToInt(rcDevice.width() * dRatio),
                           geometry::TruncateToInt(rcDevice.height() * dRatio)));
    return rcDevice;
}

} // namespace yuv
