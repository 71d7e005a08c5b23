// A hardware path that cannot be initialised. The main renderer's frame mutex stays locked then, on purpose; its
// test runs in a process of its own, which ends while a submission still waits. The sub-image renderer goes on.
#include "CoreLog.h"
#include "DecoderTextures.h"
#include "HostWindow.h"
#include "ImageCompare.h"
#include "OpenRenderer.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "yuv/CLS_ShaderYuvSubImage.h"

#include <QVBoxLayout>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

using namespace xelttest;

class Uninitialisable : public CLS_D3D11EGL
{
public:
    int32_t InitD3D11EGL() override { return -1; }
};

constexpr auto k_bound = std::chrono::milliseconds(1500);

// What it prints is what it saw; the exit status is 0 when all of it is as it must be.
[[noreturn]] void runInChild()
{
    QWidget window;
    auto *pLayout = new QVBoxLayout(&window);
    auto *pYuv = new OpenYuv;
    pYuv->SetParentLayout(pLayout);
    pYuv->setFixedSize(96, 64);
    window.show();
    const bool blShown = pump([&] { return pYuv->isValid(); });
    pYuv->m_pD3D11EGL = std::make_unique<Uninitialisable>();
    DecoderTextures textures(makeDevice(), QSize(96, 64));
    VideoFrameDesc desc = textures.frame(0);
    const bool blAccepted = pYuv->ShowYuvFrame(&desc, sizeof desc) == 0;
    CoreLog::instance().clear();
    pYuv->grabFramebuffer();
    const int nSaid = CoreLog::instance().count("InitD3D11EGL faild");
    std::atomic<bool> blReturned{false};
    std::thread([&] {
        pYuv->ShowYuvFrame(&desc, sizeof desc);
        blReturned = true;
    }).detach();
    // Later paints give up after half a second each and draw nothing.
    const auto start = std::chrono::steady_clock::now();
    pYuv->grabFramebuffer();
    const auto paint = std::chrono::steady_clock::now() - start;
    std::this_thread::sleep_for(k_bound);
    std::fprintf(stderr, "shown %d accepted %d said %d paint %lld ms returned %d\n", blShown, blAccepted,
                 nSaid,
                 static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(paint).count()),
                 blReturned.load());
    const bool blWaited = paint >= std::chrono::milliseconds(480);
    std::_Exit(blShown && blAccepted && nSaid == 1 && blWaited && !blReturned ? 0 : 1);
}

TEST(InteropLockDeathTest, SubmissionsWaitForEver)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(runInChild(), testing::ExitedWithCode(0), "said 1");
}

class OpenSubImage : public CLS_ShaderYuvSubImage
{
public:
    using CLS_ShaderYuvSubImage::m_mutexFrame;
    using CLS_ShaderYuvSubImage::m_pD3D11EGL;
};

class InteropLock : public testing::Test
{
protected:
    void SetUp() override
    {
        auto *pLayout = new QVBoxLayout(&m_window);
        m_pPane->SetParentLayout(pLayout);
        m_pPane->setFixedSize(96, 64);
        m_window.show();
        ASSERT_TRUE(pump([&] { return m_pPane->isValid(); }));
        m_pPane->m_pD3D11EGL = std::make_unique<Uninitialisable>();
        CoreLog::instance().reset();
    }
    bool isFree()
    {
        const bool blFree = m_pPane->m_mutexFrame.try_lock();
        if (blFree) {
            m_pPane->m_mutexFrame.unlock();
        }
        return blFree;
    }
    QImage picture() { return grab(static_cast<QWidget *>(m_pPane)); }
    int32_t submit(const VideoFrameDesc &desc) { return m_pPane->ShowYuvFrame(&desc, sizeof desc); }

    QWidget m_window;
    OpenSubImage *const m_pPane = new OpenSubImage; // the window's
};

TEST_F(InteropLock, TheSubImageRendererGoesOn)
{
    const ComPtr<ID3D11Device> device = makeDevice();
    {
        DecoderTextures textures(device, QSize(96, 64));
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(submit(textures.frame(0)), 0) << i;
            EXPECT_TRUE(isBlack(picture()));
            EXPECT_TRUE(isFree());
            EXPECT_EQ(CoreLog::instance().count("InitD3D11EGL faild"), 1) << "tried once";
        }
    }
    const HostFrame frame = yv12Frame(makePlanes(Pattern::Ramp, 96, 64));
    EXPECT_EQ(submit(frame.desc), 0);
    View view;
    view.widgetSize = QSize(96, 64);
    EXPECT_TRUE(imageMatches(picture(), renderPicture(bufferModel(frame.desc), view)));
    EXPECT_TRUE(isFree());
}

} // namespace
