// What the video processor at hand makes of a frame, where that is not for Direct3D to say.
#pragma once

#include "DecoderTextures.h"

namespace xelttest {

// How far the processor keeps to the colour spaces' definitions.
struct ProcessorHabits
{
    double dChromaZero = 128.0; // the value of no colour
    double dChromaSpan = 224.0; // in limited range
    bool blHonoursRange = true; // otherwise everything counts as limited
    bool blClampsLuma = false;  // to its range, before it is mixed with chroma
    size_t nWrongRows = 0;      // that may be their neighbours instead
};
const ProcessorHabits &processorHabits();

// What the processor is told of a frame in BT.601 or else BT.709, in full or else limited range.
inline D3D11_VIDEO_PROCESSOR_COLOR_SPACE colorSpace(bool blBt601, bool blFull)
{
    D3D11_VIDEO_PROCESSOR_COLOR_SPACE cs = {};
    cs.YCbCr_Matrix = blBt601 ? 0 : 1;
    cs.Nominal_Range =
        blFull ? D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_0_255 : D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_16_235;
    return cs;
}

// Rows of B, G, R, A as the processor converts the frame, or that part of a slice, in limited range and BT.709 or
// else BT.601. Empty for the software device, which keeps to the definitions. Its calls are not counted.
std::vector<uint8_t> convertedFrame(const Planes &planes, bool blBt601 = false);
std::vector<uint8_t> convertedSlice(const DecoderTextures &textures, UINT nSlice, const QSize &size);

} // namespace xelttest
