// What both renderers do with their hardware path. The caller holds the frame mutex.
#pragma once

#include <QRect>
#include <cstdint>

class CLS_D3D11EGL;
class QWidget;

namespace yuv {

// Gives a frame of nLength bytes to the hardware path, after the host's device where that is another one.
// Null is ignored.
void HandOverFrame(CLS_D3D11EGL *pHardware, void *pDevice, const void *pData, int32_t nLength);

// The widget's rectangle with width and height in device pixels of its screen. GUI thread.
QRect DeviceRect(const QWidget &widget);

} // namespace yuv
