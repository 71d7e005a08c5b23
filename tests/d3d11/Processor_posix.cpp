// The software device keeps to the definitions.
#include "Processor.h"

namespace xelttest {

const ProcessorHabits &processorHabits()
{
    static const ProcessorHabits s_habits;
    return s_habits;
}

std::vector<uint8_t> convertedFrame(const Planes & /*planes*/, bool /*blBt601*/)
{
    return {};
}

std::vector<uint8_t> convertedSlice(const DecoderTextures & /*textures*/, UINT /*nSlice*/,
                                    const QSize & /*size*/)
{
    return {};
}

} // namespace xelttest
