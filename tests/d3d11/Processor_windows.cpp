// A real processor, which is asked.
#include "Processor.h"

#include "windows/CountedDevice.h"

#include <cstdio>
#include <stdexcept>

namespace xelttest {

namespace {

void require(HRESULT hr)
{
    if (FAILED(hr)) {
        throw std::runtime_error("a conversion failed in the test itself");
    }
}

// One conversion by the calls that Direct3D documents, and by nothing of the library's.
std::vector<uint8_t> convert(const DecoderTextures &textures, UINT nSlice, const QSize &size,
                             const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace)
{
    ID3D11Device &device = *textures.device();
    ComPtr<ID3D11VideoDevice> video;
    ComPtr<ID3D11DeviceContext> context;
    ComPtr<ID3D11VideoContext> videoContext;
    require(device.QueryInterface(IID_ID3D11VideoDevice, video.ReleaseAndGetVoidAddressOf()));
    device.GetImmediateContext(context.ReleaseAndGetAddressOf());
    require(context.As(IID_ID3D11VideoContext, videoContext));

    D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = {};
    desc.InputWidth = desc.OutputWidth = static_cast<UINT>(textures.size().width());
    desc.InputHeight = desc.OutputHeight = static_cast<UINT>(textures.size().height());
    ComPtr<ID3D11VideoProcessorEnumerator> enumerator;
    ComPtr<ID3D11VideoProcessor> processor;
    require(video->CreateVideoProcessorEnumerator(&desc, enumerator.ReleaseAndGetAddressOf()));
    require(video->CreateVideoProcessor(enumerator.Get(), 0, processor.ReleaseAndGetAddressOf()));

    const ComPtr<ID3D11Texture2D> target = makeTarget(device, size);
    D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC outDesc = {};
    outDesc.ViewDimension = D3D11_VPOV_DIMENSION_TEXTURE2D;
    D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC inDesc = {};
    inDesc.ViewDimension = D3D11_VPIV_DIMENSION_TEXTURE2D;
    inDesc.Texture2D.ArraySlice = nSlice;
    ComPtr<ID3D11VideoProcessorOutputView> out;
    ComPtr<ID3D11VideoProcessorInputView> in;
    require(video->CreateVideoProcessorOutputView(target.Get(), enumerator.Get(), &outDesc,
                                                  out.ReleaseAndGetAddressOf()));
    require(video->CreateVideoProcessorInputView(textures.texture(), enumerator.Get(), &inDesc,
                                                 in.ReleaseAndGetAddressOf()));

    const RECT rcSource = {0, 0, size.width(), size.height()};
    videoContext->VideoProcessorSetStreamSourceRect(processor.Get(), 0, TRUE, &rcSource);
    videoContext->VideoProcessorSetStreamAutoProcessingMode(processor.Get(), 0, FALSE);
    videoContext->VideoProcessorSetStreamColorSpace(processor.Get(), 0, &colorSpace);
    D3D11_VIDEO_PROCESSOR_STREAM stream = {};
    stream.Enable = TRUE;
    stream.pInputSurface = in.Get();
    require(videoContext->VideoProcessorBlt(processor.Get(), out.Get(), 0, 1, &stream));
    return readTarget(device, *target.Get());
}

// Red of a frame of one colour.
int redOf(DecoderTextures &textures, uint8_t nV, bool blFull)
{
    textures.fill(0, solidPlanes(16, 16, 126, 128, nV));
    return convert(textures, 0, QSize(16, 16), colorSpace(false, blFull))[4 * (8 * 16 + 8) + 2];
}

ProcessorHabits measure()
{
    const Uncounted uncounted;
    DecoderTextures textures(makeDevice(), QSize(16, 16), 1);
    ProcessorHabits habits;
    // By definition 126 and 208, and 221 in limited range.
    habits.blHonoursRange = redOf(textures, 128, true) <= 126;
    if (redOf(textures, 180, false) < 216) {
        // Chroma is taken for half of full range around one half, luma is clamped to its own, and rows are
        // looked up at positions that rounding moves once in a picture.
        habits.dChromaZero = 127.5;
        habits.dChromaSpan = 255.0;
        habits.blClampsLuma = true;
        habits.nWrongRows = 1;
    }
    std::printf("The video processor takes no colour for %.1f, spreads chroma over %.0f, and %s the range.\n",
                habits.dChromaZero, habits.dChromaSpan, habits.blHonoursRange ? "honours" : "ignores");
    return habits;
}

} // namespace

const ProcessorHabits &processorHabits()
{
    static const ProcessorHabits s_habits = measure();
    return s_habits;
}

std::vector<uint8_t> convertedFrame(const Planes &planes, bool blBt601)
{
    const Uncounted uncounted;
    const QSize size(planes.nWidth, planes.nHeight);
    DecoderTextures textures(makeDevice(), size, 1);
    textures.fill(0, planes);
    return convert(textures, 0, size, colorSpace(blBt601, false));
}

std::vector<uint8_t> convertedSlice(const DecoderTextures &textures, UINT nSlice, const QSize &size)
{
    const Uncounted uncounted;
    return convert(textures, nSlice, size, colorSpace(false, false));
}

} // namespace xelttest
