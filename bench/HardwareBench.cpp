#include "BenchFrame.h"
#include "BenchPane.h"
#include "Contest.h"
#include "Failures.h"
#include "MixedWindow.h"

#include <benchmark/benchmark.h>

#include <QImage>

#include "d3d11/ComPtr.h"
#include "softd3d11/SoftD3D11.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

const QSize kPaneSize(640, 360);
constexpr int kWarmUpRounds = 3;
constexpr int kTolerance = 3; // levels

// A grey ramp as NV12 in memory: the one kind of picture that both conversions show alike.
class GreyFrame
{
public:
    explicit GreyFrame(FrameSize size)
        : m_nLuma(static_cast<std::size_t>(size.nWidth) * static_cast<std::size_t>(size.nHeight)),
          m_bytes(m_nLuma * 3 / 2, 128)
    {
        const auto nWidth = static_cast<std::size_t>(size.nWidth);
        for (std::size_t i = 0; i < m_nLuma; ++i)
            m_bytes[i] = static_cast<std::uint8_t>(16 + i % nWidth * 219 / nWidth);
        m_desc.iWidth = size.nWidth;
        m_desc.iHeight = size.nHeight;
        m_desc.nDisplayType = VIDEO_DISPLAY_NV12;
        m_desc.pPlaneY = m_bytes.data();
        m_desc.pPlaneUV = m_bytes.data() + m_nLuma;
    }
    GreyFrame(const GreyFrame &) = delete;
    GreyFrame &operator=(const GreyFrame &) = delete;

    const VideoFrameDesc &Desc() const { return m_desc; }
    const std::uint8_t *Bytes() const { return m_bytes.data(); }

private:
    std::size_t m_nLuma;
    std::vector<std::uint8_t> m_bytes;
    VideoFrameDesc m_desc = {};
};

// The same picture in a texture.
class TextureFrame
{
public:
    TextureFrame(FrameSize size, const GreyFrame &frame)
    {
        D3D11_TEXTURE2D_DESC desc = {};
        desc.Width = static_cast<UINT>(size.nWidth);
        desc.Height = static_cast<UINT>(size.nHeight);
        desc.MipLevels = desc.ArraySize = desc.SampleDesc.Count = 1;
        desc.Format = DXGI_FORMAT_NV12;
        desc.BindFlags = D3D11_BIND_DECODER;
        const D3D11_SUBRESOURCE_DATA data = {frame.Bytes(), desc.Width, 0};
        m_blGood = SUCCEEDED(softd3d11::CreateDevice(m_device.ReleaseAndGetAddressOf())) &&
                   SUCCEEDED(m_device->CreateTexture2D(&desc, &data, m_texture.ReleaseAndGetAddressOf()));
        m_desc.iWidth = size.nWidth;
        m_desc.iHeight = size.nHeight;
        m_desc.nDisplayType = VIDEO_DISPLAY_DXGL;
        m_desc.pD3D11Texture = m_texture.Get();
    }

    bool IsGood() const { return m_blGood; }
    ID3D11Device *Device() const { return m_device.Get(); }
    const VideoFrameDesc &Desc() const { return m_desc; }

private:
    ComPtr<ID3D11Device> m_device;
    ComPtr<ID3D11Texture2D> m_texture;
    VideoFrameDesc m_desc = {};
    bool m_blGood = false;
};

// Whether both show the ramp. The video processor stretches limited luma to the full range, the shader of
// frames in memory only moves it to 0.
bool PicturesAgree(const QImage &hardware, const QImage &memory)
{
    int nBrightest = 0;
    for (int y = 0; y < hardware.height(); y += 8)
        for (int x = 0; x < hardware.width(); ++x) {
            const int nExpected =
                std::min(255, static_cast<int>(std::lround(qGreen(memory.pixel(x, y)) * 255.0 / 219.0)));
            if (std::abs(qGreen(hardware.pixel(x, y)) - nExpected) > kTolerance)
                return false;
            nBrightest = std::max(nBrightest, nExpected);
        }
    return nBrightest > 200;
}

// A paint of a texture beside a paint of the same frame in memory. Each uploads once: the picture as the
// device has converted it, or the planes that the shader converts.
void HardwarePaint(benchmark::State &state, FrameSize size)
{
    const GreyFrame frame(size);
    const TextureFrame texture(size, frame);
    MixedWindow window;
    const std::size_t nHardware = window.Add(xelt::RendererType::Yuv, kPaneSize);
    const std::size_t nMemory = window.Add(xelt::RendererType::Yuv, kPaneSize);
    if (!texture.IsGood() || !window.Pane(nHardware).setD3D11Device(texture.Device()))
        return FailBench(state, "the device or its texture could not be made");
    if (!window.Pane(nHardware).showFrame(texture.Desc()) || !window.Pane(nMemory).showFrame(frame.Desc()))
        return FailBench(state, "the library refused a frame");
    if (!window.Open())
        return FailBench(state, "the panes got no OpenGL context");

    Contest contest({[&] { PaintNow(window.Widget(nHardware)); }, [&] { PaintNow(window.Widget(nMemory)); }});
    contest.WarmUp(kWarmUpRounds); // the first paint of a texture only converts
    if (!PicturesAgree(window.Widget(nHardware).grabFramebuffer(), window.Widget(nMemory).grabFramebuffer()))
        return FailBench(state, "the texture and the frame in memory show different pictures");
    for (auto _ : state)
        state.SetIterationTime(contest.RunRound());
    state.counters["of_memory"] = contest.Ratio(0, 1);
}

} // namespace

void RegisterHardwareBenchmarks()
{
    for (const FrameSize size : {kFrame360p, kFrame1080p, kFrame4K})
        benchmark::RegisterBenchmark(("HardwarePaint/" + SizeName(size)).c_str(),
                                     [=](benchmark::State &state) { HardwarePaint(state, size); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
}
