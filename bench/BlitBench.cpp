#include "BenchFrame.h"
#include "Contest.h"
#include "Failures.h"

// Before Direct3D's headers, which leave words behind that others use as names.
#include <benchmark/benchmark.h>

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include "d3d11/ComPtr.h"
#include "softd3d11/SharedImage.h"
#include "softd3d11/SoftD3D11.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int kWarmUpRounds = 3;
// Levels between two converters that place chroma differently, on a smooth picture.
constexpr int kAgreement = 3;
constexpr std::size_t kAgreementMargin = 16;

// A smooth NV12 picture, BT.709 of limited range.
class SmoothFrame
{
public:
    explicit SmoothFrame(FrameSize size)
        : m_nWidth(static_cast<std::size_t>(size.nWidth)),
          m_nHeight(static_cast<std::size_t>(size.nHeight)),
          m_bytes(m_nWidth * m_nHeight * 3 / 2)
    {
        for (std::size_t y = 0; y < m_nHeight * 3 / 2; ++y)
            for (std::size_t x = 0; x < m_nWidth; ++x)
                m_bytes[y * m_nWidth + x] = Sample(x, y);
    }

    const std::uint8_t *Luma() const { return m_bytes.data(); }
    const std::uint8_t *Chroma() const { return m_bytes.data() + m_nWidth * m_nHeight; }
    UINT Pitch() const { return static_cast<UINT>(m_nWidth); }

private:
    std::uint8_t Sample(std::size_t x, std::size_t y) const
    {
        if (y < m_nHeight)
            return static_cast<std::uint8_t>(16 + (x + y) * 200 / (m_nWidth + m_nHeight));
        const std::size_t nAlong =
            x % 2 == 0 ? x * 100 / m_nWidth : (y - m_nHeight) * 200 / (m_nWidth + m_nHeight);
        return static_cast<std::uint8_t>(90 + nAlong);
    }

    std::size_t m_nWidth;
    std::size_t m_nHeight;
    std::vector<std::uint8_t> m_bytes;
};

// The device's blit, as a renderer does it for every frame: an input view and the settings anew each time.
class DeviceBlit
{
public:
    DeviceBlit(FrameSize size, const SmoothFrame &frame)
    {
        D3D11_TEXTURE2D_DESC desc = {};
        desc.Width = static_cast<UINT>(size.nWidth);
        desc.Height = static_cast<UINT>(size.nHeight);
        desc.MipLevels = desc.ArraySize = desc.SampleDesc.Count = 1;
        desc.Format = DXGI_FORMAT_NV12;
        desc.BindFlags = D3D11_BIND_DECODER;
        const D3D11_SUBRESOURCE_DATA data = {frame.Luma(), frame.Pitch(), 0};
        ComPtr<ID3D11Device> device;
        ComPtr<ID3D11DeviceContext> context;
        ComPtr<ID3D11VideoProcessorEnumerator> enumerator;
        D3D11_VIDEO_PROCESSOR_CONTENT_DESC content = {};
        content.InputWidth = content.OutputWidth = desc.Width;
        content.InputHeight = content.OutputHeight = desc.Height;
        const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC view = {D3D11_VPOV_DIMENSION_TEXTURE2D, {}};
        m_blGood = Good(softd3d11::CreateDevice(device.ReleaseAndGetAddressOf())) &&
                   Good(device.As(IID_ID3D11VideoDevice, m_device)) &&
                   Good(device->CreateTexture2D(&desc, &data, m_source.ReleaseAndGetAddressOf()));
        if (!m_blGood)
            return;
        desc.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
        desc.BindFlags = D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE;
        desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
        device->GetImmediateContext(context.ReleaseAndGetAddressOf());
        m_blGood =
            Good(context.As(IID_ID3D11VideoContext, m_context)) &&
            Good(device->CreateTexture2D(&desc, nullptr, m_target.ReleaseAndGetAddressOf())) &&
            Good(m_device->CreateVideoProcessorEnumerator(&content, m_enumerator.ReleaseAndGetAddressOf())) &&
            Good(m_device->CreateVideoProcessor(m_enumerator.Get(), 0,
                                                m_processor.ReleaseAndGetAddressOf())) &&
            Good(m_device->CreateVideoProcessorOutputView(m_target.Get(), m_enumerator.Get(), &view,
                                                          m_output.ReleaseAndGetAddressOf()));
    }

    bool IsGood() const { return m_blGood; }

    void Run()
    {
        D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC desc = {};
        desc.ViewDimension = D3D11_VPIV_DIMENSION_TEXTURE2D;
        ComPtr<ID3D11VideoProcessorInputView> input;
        D3D11_VIDEO_PROCESSOR_COLOR_SPACE colorSpace = {};
        colorSpace.YCbCr_Matrix = 1;
        colorSpace.Nominal_Range = D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_16_235;
        D3D11_VIDEO_PROCESSOR_STREAM stream = {};
        stream.Enable = TRUE;
        m_blGood =
            m_blGood && Good(m_device->CreateVideoProcessorInputView(m_source.Get(), m_enumerator.Get(),
                                                                     &desc, input.ReleaseAndGetAddressOf()));
        stream.pInputSurface = input.Get();
        m_context->VideoProcessorSetStreamColorSpace(m_processor.Get(), 0, &colorSpace);
        m_blGood =
            m_blGood && Good(m_context->VideoProcessorBlt(m_processor.Get(), m_output.Get(), 0, 1, &stream));
    }

    std::shared_ptr<softd3d11::SharedImage> Picture() const
    {
        ComPtr<IDXGIResource> resource;
        HANDLE hShared = nullptr;
        const bool blShared =
            Good(m_target.As(IID_IDXGIResource, resource)) && Good(resource->GetSharedHandle(&hShared));
        return blShared ? softd3d11::FindSharedImage(hShared) : nullptr;
    }

private:
    static bool Good(HRESULT hr) { return SUCCEEDED(hr); }

    ComPtr<ID3D11VideoDevice> m_device;
    ComPtr<ID3D11VideoContext> m_context;
    ComPtr<ID3D11Texture2D> m_source;
    ComPtr<ID3D11Texture2D> m_target;
    ComPtr<ID3D11VideoProcessorEnumerator> m_enumerator;
    ComPtr<ID3D11VideoProcessor> m_processor;
    ComPtr<ID3D11VideoProcessorOutputView> m_output;
    bool m_blGood = false;
};

// The same conversion by libswscale, with the quickest of its scalers.
class ScalerBlit
{
public:
    ScalerBlit(FrameSize size, const SmoothFrame &frame)
        : m_frame(frame),
          m_nHeight(size.nHeight),
          m_nPitch(size.nWidth * 4),
          m_bytes(static_cast<std::size_t>(m_nPitch) * static_cast<std::size_t>(m_nHeight)),
          m_pContext(sws_getContext(size.nWidth, size.nHeight, AV_PIX_FMT_NV12, size.nWidth, size.nHeight,
                                    AV_PIX_FMT_BGRA, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr),
                     &sws_freeContext)
    {
        const int *pBt709 = sws_getCoefficients(SWS_CS_ITU709);
        if (m_pContext != nullptr)
            sws_setColorspaceDetails(m_pContext.get(), pBt709, 0, pBt709, 1, 0, 1 << 16, 1 << 16);
    }

    bool IsGood() const { return m_pContext != nullptr; }

    void Run()
    {
        const std::uint8_t *const planes[] = {m_frame.Luma(), m_frame.Chroma(), nullptr, nullptr};
        const int pitches[] = {static_cast<int>(m_frame.Pitch()), static_cast<int>(m_frame.Pitch()), 0, 0};
        std::uint8_t *const targets[] = {m_bytes.data(), nullptr, nullptr, nullptr};
        const int targetPitches[] = {m_nPitch, 0, 0, 0};
        sws_scale(m_pContext.get(), planes, pitches, 0, m_nHeight, targets, targetPitches);
    }

    const std::vector<std::uint8_t> &Picture() const { return m_bytes; }

private:
    const SmoothFrame &m_frame;
    int m_nHeight;
    int m_nPitch;
    std::vector<std::uint8_t> m_bytes;
    std::unique_ptr<SwsContext, decltype(&sws_freeContext)> m_pContext;
};

// Whether both have converted the same picture. The edges are left out, where chroma is placed differently.
bool Agree(const softd3d11::SharedImage &image, const std::vector<std::uint8_t> &other)
{
    const softd3d11::SharedImage::Pixels pixels = image.Lock();
    const std::size_t nRowBytes = image.Width() * std::size_t{4};
    constexpr std::size_t kMarginBytes = kAgreementMargin * 4;
    for (std::size_t y = kAgreementMargin; y + kAgreementMargin < image.Height(); y += 7)
        for (std::size_t i = kMarginBytes; i + kMarginBytes < nRowBytes; ++i)
            if (std::abs(pixels.pRows[y * pixels.nPitch + i] - other[y * nRowBytes + i]) > kAgreement)
                return false;
    return true;
}

// The blit of the software device beside libswscale and beside a memcpy of as many bytes as it writes.
void Blit(benchmark::State &state, FrameSize size)
{
    const SmoothFrame frame(size);
    DeviceBlit device(size, frame);
    ScalerBlit scaler(size, frame);
    if (!device.IsGood() || !scaler.IsGood())
        return FailBench(state, "a converter could not be made");
    const std::vector<std::uint8_t> source(scaler.Picture().size(), 1);
    std::vector<std::uint8_t> copy(source.size());
    Contest contest({[&] { device.Run(); }, [&] { scaler.Run(); },
                     [&] {
                         std::memcpy(copy.data(), source.data(), copy.size());
                         benchmark::ClobberMemory();
                     }});
    contest.WarmUp(kWarmUpRounds);
    const auto pImage = device.Picture();
    if (!device.IsGood() || pImage == nullptr || !Agree(*pImage, scaler.Picture()))
        return FailBench(state, "the converters do not agree");
    for (auto _ : state)
        state.SetIterationTime(contest.RunRound());
    if (!device.IsGood())
        return FailBench(state, "a blit failed");
    state.counters["of_swscale"] = contest.Ratio(0, 1);
    state.counters["of_memcpy"] = contest.Ratio(0, 2);
}

} // namespace

void RegisterBlitBenchmarks()
{
    for (const FrameSize size : {kFrame360p, kFrame1080p, kFrame4K})
        benchmark::RegisterBenchmark(("Blit/NV12/" + SizeName(size)).c_str(),
                                     [=](benchmark::State &state) { Blit(state, size); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
}
