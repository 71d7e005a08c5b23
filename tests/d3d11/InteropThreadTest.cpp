// Decoding threads that push Direct3D 11 frames, by turns on two devices and with other types between them,
// while the GUI thread paints, clears come from outside, and panes end.
#include "DecoderTextures.h"
#include "HostWindow.h"
#include "ImageCompare.h"
#include "Reference.h"
#include "Workers.h"

#include "softd3d11/SoftEgl.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <memory>

namespace {

using namespace xelttest;
using softd3d11::Method;

constexpr int k_nPanes = 3;
constexpr int k_nFrames = 120;
constexpr int k_nTimeoutMs = 240000;
const QSize k_paneSize(96, 64);

// What one decoder has: an array of two sizes on each of two devices.
class Decoder
{
public:
    explicit Decoder(const std::array<ComPtr<ID3D11Device>, 2> &devices)
    {
        for (const auto &device : devices) {
            m_vecArrays.emplace_back(device, QSize(96, 64), 4);
            m_vecArrays.emplace_back(device, QSize(64, 48), 4);
        }
    }

    // Frame number n; false when the pane refused it.
    bool push(void *handle, int n)
    {
        if (n % 11 == 10) {
            const HostFrame frame = yv12Frame(solidPlanes(64, 48, static_cast<uint8_t>(n), 100, 100));
            return show(handle, frame) == 0;
        }
        DecoderTextures &array = m_vecArrays[static_cast<size_t>(n / 7) % m_vecArrays.size()];
        const UINT nSlice = static_cast<UINT>(n) % 4;
        array.fill(nSlice, solidPlanes(array.size().width(), array.size().height(),
                                       static_cast<uint8_t>(20 + n % 200), 128, 128));
        ID3D11Device *pDevice = array.device();
        Xelt_SetParam(handle, XELTCMD_SET_D3D11_DEVICE, &pDevice, sizeof pDevice);
        const VideoFrameDesc desc = array.frame(nSlice);
        return Xelt_ShowYuvFrame(handle, &desc, sizeof desc) == 0;
    }

private:
    std::vector<DecoderTextures> m_vecArrays;
};

class InteropThreads : public testing::TestWithParam<int32_t>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(softegl::Active());
        m_nObjects = liveObjects();
        softd3d11::ResetCallCounts();
        for (auto &device : m_devices) {
            device = makeDevice();
        }
        m_pWindow = std::make_unique<HostWindow>(k_paneSize, k_nPanes, Creator::CreateEx, GetParam());
        for (int i = 0; i < k_nPanes; ++i) {
            m_apDecoders[static_cast<size_t>(i)] = std::make_unique<Decoder>(m_devices);
        }
    }
    void TearDown() override
    {
        m_pWindow.reset();
        drainEvents();
        for (auto &pDecoder : m_apDecoders) {
            pDecoder.reset();
        }
        for (auto &device : m_devices) {
            EXPECT_EQ(liveObjects(device.Get()), 0U);
            device.Reset();
        }
        EXPECT_EQ(liveObjects(), m_nObjects);
        EXPECT_EQ(softegl::LiveSurfaces(), 0U);
        EXPECT_EQ(softegl::BoundTextures(), 0U);
        for (unsigned n = 0; n < static_cast<unsigned>(Method::Count); ++n) {
            EXPECT_EQ(softd3d11::RefusedCallCount(static_cast<Method>(n)), 0U)
                << softd3d11::MethodName(static_cast<Method>(n));
        }
    }

    // A decoding thread for each pane.
    void startDecoders(Workers &workers, std::atomic<int> &nAccepted)
    {
        for (int i = 0; i < k_nPanes; ++i) {
            workers.start([this, i, pane = m_pWindow->pane(i), &nAccepted](const std::atomic<bool> &blStop) {
                for (int n = 0; n < k_nFrames && !blStop; ++n) {
                    nAccepted += m_apDecoders[static_cast<size_t>(i)]->push(pane, n) ? 1 : 0;
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            });
        }
    }
    // A last frame, and that it shows, within the time-out.
    testing::AssertionResult showsLast(int nPane)
    {
        void *const pane = m_pWindow->pane(nPane);
        DecoderTextures last(m_devices[0], k_paneSize);
        last.fill(0, solidPlanes(k_paneSize.width(), k_paneSize.height(), 16 + 219 * 3 / 5, 128, 128));
        ID3D11Device *pDevice = last.device();
        Xelt_SetParam(pane, XELTCMD_SET_D3D11_DEVICE, &pDevice, sizeof pDevice);
        const VideoFrameDesc desc = last.frame(0);
        for (int nTry = 0; nTry < 20; ++nTry) {
            Xelt_ShowYuvFrame(pane, &desc, sizeof desc);
            drainEvents();
            grab(pane);
            if (isUniform(grab(pane), {153, 153, 153}, 2)) {
                return testing::AssertionSuccess();
            }
        }
        return testing::AssertionFailure() << "pane " << nPane << " does not show its last frame";
    }

    size_t m_nObjects = 0;
    std::array<ComPtr<ID3D11Device>, 2> m_devices;
    std::unique_ptr<HostWindow> m_pWindow;
    std::array<std::unique_ptr<Decoder>, k_nPanes> m_apDecoders;
};

TEST_P(InteropThreads, PlayOnTwoDevices)
{
    Workers workers;
    std::atomic<int> nAccepted{0};
    startDecoders(workers, nAccepted);
    EXPECT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    EXPECT_GT(nAccepted, k_nPanes * k_nFrames / 2);
    for (int i = 0; i < k_nPanes; ++i) {
        EXPECT_TRUE(showsLast(i));
    }
}

TEST_P(InteropThreads, ClearsFromOutside)
{
    Workers workers;
    std::atomic<int> nAccepted{0};
    startDecoders(workers, nAccepted);
    workers.start([this](const std::atomic<bool> &blStop) {
        for (int n = 0; n < 60 && !blStop; ++n) {
            void *const pane = m_pWindow->pane(n % k_nPanes);
            setReserveLastFrame(pane, n / k_nPanes % 2);
            Xelt_ClearDraw(pane);
            setRotation(pane, n % 4 * 90, n % 2, n % 3);
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    });
    EXPECT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    EXPECT_GT(nAccepted, 0);
    for (int i = 0; i < k_nPanes; ++i) {
        EXPECT_TRUE(showsLast(i));
    }
}

TEST_P(InteropThreads, PanesEndWhileTheyPlay)
{
    Workers workers;
    std::atomic<int> nAccepted{0};
    startDecoders(workers, nAccepted);
    EXPECT_TRUE(pump([&] { return nAccepted >= 4 * k_nPanes; }, k_nTimeoutMs));
    m_pWindow->releaseAll();
    EXPECT_EQ(softegl::LiveSurfaces(), 0U);
    // The decoders push into handles that are gone, which refuse.
    EXPECT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
}

INSTANTIATE_TEST_SUITE_P(Renderers, InteropThreads, testing::Values(0, 7));

} // namespace
