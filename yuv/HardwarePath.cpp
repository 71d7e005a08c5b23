#include "yuv/HardwarePath.h"

#include "d3d11/CLS_D3D11EGL.h"

#include <QMutex>
#include <QScreen>
#include <QWidget>

namespace yuv {

bool IsLocked(QMutex &mutex)
{
    if (!mutex.tryLock()) {
        return true;
    }
    mutex.unlock();
    return false;
}

void HandOverFrame(QMutex &mutexFrame, CLS_D3D11EGL *pHardware, void *pDevice, const void *pData,
                   int32_t nLength)
{
    Q_ASSERT(IsLocked(mutexFrame));
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
    const QScreen *pScreen = widget.screen();
    const double dRatio = pScreen != nullptr ? pScreen->devicePixelRatio() : 1.0;
    QRect rcDevice = widget.rect();
    rcDevice.setSize(QSize(geometry::TruncateToInt(rcDevice.width() * dRatio),
                           geometry::TruncateToInt(rcDevice.height() * dRatio)));
    return rcDevice;
}

} // namespace yuv
