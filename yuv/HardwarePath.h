// What both renderers do with their hardware path. The caller holds the frame mutex.
#pragma once

#include <QRect>
#include <cstdint>
#include <memory>

class CLS_D3D11EGL;
class QWidget;

namespace yuv {

// Gives a frame of nLength bytes to the hardware path, after the host's device where that is another one.
// Null is ignored. Host thread; the frame mutex keeps a paint from running meanwhile.
void HandOverFrame(CLS_D3D11EGL *pHardware, void *pDevice, const void *pData, int32_t nLength);

// Releases all that the hardware path holds and deletes it. Null is ignored. Painting thread, the widget's
// context current where it has one.
void DestroyHardware(std::unique_ptr<CLS_D3D11EGL> &pHardware);

// The widget's rectangle with width and height in device pixels of the screen that shows it, the most of it where it
// is on several; in its own pixels where it is on none. GUI thread.
QRect DeviceRect(const QWidget &widget);

} // namespace yuv
