// Frames of sizes that no decoder makes, and buffers that are shorter than their pictures.
#include "HostilePane.h"
#include "ImageCompare.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <limits>

namespace {

using namespace xelttest;

constexpr int32_t k_nMax = std::numeric_limits<int32_t>::max();
constexpr int32_t k_nMin = std::numeric_limits<int32_t>::min();

constexpr struct
{
    int32_t nWidth;
    int32_t nHeight;
} k_aSizes[] = {{134217728, 16},  {16, 134217728},  {k_nMax, k_nMax}, {k_nMax, 1},    {1, k_nMax},
                {0, 0},           {0, 16},          {16, 0},          {-1, -1},       {-1, 16},
                {k_nMin, k_nMin}, {k_nMin, k_nMax}, {65536, 65536},   {46341, 46341}, {32768, 2},
                {715827883, 1},   {2, 1073741824}};

class HostileFrame : public HostilePane
{
protected:
    void SetUp() override
    {
        HostilePane::SetUp();
        m_pane = addPane(new QHBoxLayout(&m_window));
        ASSERT_TRUE(showWindow(m_window, m_pane, QSize(120, 90)));
    }

    int32_t submit(const VideoFrameDesc &desc) { return Xelt_ShowYuvFrame(m_pane, &desc, sizeof desc); }
    // Whether the pane shows the frame's picture, filling it.
    testing::AssertionResult shows(const HostFrame &frame)
    {
        View view;
        view.widgetSize = paneWidget(m_pane)->size();
        VideoFrameDesc desc = frame.desc;
        desc.nDataLen = 0; // the model's buffer is as long as the picture
        return imageMatches(grab(m_pane), renderPicture(bufferModel(desc), view), {8.0, 1.0, 0.1});
    }

    QWidget m_window;
    void *m_pane = nullptr;
};

TEST_P(HostileFrame, TextureFramesOfAnySizeLeaveTheProcessAlive)
{
    for (const auto &size : k_aSizes) {
        SCOPED_TRACE(testing::Message() << size.nWidth << " x " << size.nHeight);
        VideoFrameDesc desc{};
        desc.nDisplayType = VIDEO_DISPLAY_DXGL;
        desc.iWidth = size.nWidth;
        desc.iHeight = size.nHeight;
        for (int i = 0; i < 2; ++i) {
            const int32_t nResult = submit(desc);
            EXPECT_TRUE(nResult == 0 || nResult == -1) << nResult;
            EXPECT_TRUE(isBlack(grab(m_pane)));
        }
        // Also the type change starts over: the next size meets a hardware path that is new.
        EXPECT_TRUE(playsOn(m_pane));
    }
}

TEST_P(HostileFrame, SoftwareFramesOfAnySizeAreRefusedOrKeptBlack)
{
    const GuardedBytes bytes(64);
    for (const int32_t nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        for (const auto &size : k_aSizes) {
            for (const int32_t nDataLen : {0, 1, 64, -1, k_nMin}) {
                SCOPED_TRACE(testing::Message() << "type " << nType << ", " << size.nWidth << " x "
                                                << size.nHeight << ", " << nDataLen);
                VideoFrameDesc desc{};
                desc.nDisplayType = nType;
                desc.iWidth = size.nWidth;
                desc.iHeight = size.nHeight;
                desc.nDataLen = nDataLen;
                desc.pFrameData = nDataLen > 0 ? bytes.data() : nullptr;
                const bool blStored = size.nWidth > 0 && size.nHeight > 0 &&
                                      (nDataLen > 0 || int64_t{size.nWidth} * size.nHeight <= k_nMax / 3);
                EXPECT_EQ(submit(desc), blStored ? 0 : -1);
                EXPECT_TRUE(isBlack(grab(m_pane)));
                Xelt_ClearDraw(m_pane); // or the next one finds a buffer of its size
            }
        }
        EXPECT_TRUE(playsOn(m_pane));
        Xelt_ClearDraw(m_pane);
        EXPECT_TRUE(isBlack(grab(m_pane))); // where the next frame is refused, the widget stays as it is
    }
}

TEST_P(HostileFrame, APictureAfterAShortOneOfItsSizeShows)
{
    const Planes planes = makePlanes(Pattern::Card, 64, 48);
    for (const HostFrame &whole : {yv12Frame(planes), nv12Frame(planes), nv12Frame(planes, {0, false}),
                                   nv12Frame(planes, {70, true})}) {
        for (const int32_t nShort : {1, 64 * 48, 64 * 48 * 3 / 2 - 1}) {
            SCOPED_TRACE(testing::Message() << "type " << whole.desc.nDisplayType << ", " << nShort);
            VideoFrameDesc desc = whole.desc;
            desc.nDataLen = nShort;
            EXPECT_EQ(submit(desc), 0);
            EXPECT_TRUE(isBlack(grab(m_pane)));
            EXPECT_EQ(submit(whole.desc), 0);
            EXPECT_TRUE(shows(whole));
            Xelt_ClearDraw(m_pane);
        }
    }
}

TEST_P(HostileFrame, APictureAfterAShortOneOfAnotherTypeShows)
{
    const Planes planes = makePlanes(Pattern::Card, 64, 48);
    const HostFrame yv12 = yv12Frame(planes);
    const HostFrame nv12 = nv12Frame(planes);
    for (const auto *pair : {&yv12, &nv12}) {
        const HostFrame &other = pair == &yv12 ? nv12 : yv12;
        VideoFrameDesc desc = other.desc;
        desc.nDataLen = 64 * 48;
        EXPECT_EQ(submit(desc), 0);
        EXPECT_EQ(submit(pair->desc), 0);
        EXPECT_TRUE(shows(*pair));
        Xelt_ClearDraw(m_pane);
    }
}

class HostileTextureSize : public HostileFrame
{
protected:
    int largest()
    {
        GLint nLargest = 0;
        paneWidget(m_pane)->makeCurrent();
        QOpenGLContext::currentContext()->functions()->glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nLargest);
        paneWidget(m_pane)->doneCurrent();
        return nLargest;
    }
    static std::vector<std::string> reports()
    {
        std::vector<std::string> vecTexts;
        for (const std::string &sText : CoreLog::instance().errors()) {
            if (sText.find("larger than the context's textures") != std::string::npos) {
                vecTexts.push_back(sText);
            }
        }
        return vecTexts;
    }
    // Shows frames of the size again and again; what was said of it once.
    std::string reportOn(const HostFrame &frame)
    {
        CoreLog::instance().clear();
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(submit(frame.desc), 0);
            EXPECT_TRUE(isBlack(grab(m_pane)));
            EXPECT_TRUE(isBlack(grab(m_pane)));
        }
        const auto vecTexts = reports();
        EXPECT_EQ(vecTexts.size(), 1U);
        return vecTexts.empty() ? std::string() : vecTexts.front();
    }
};

TEST_P(HostileTextureSize, ASizeBeyondTheContextIsSaidOnce)
{
    const int nLargest = largest();
    ASSERT_GT(nLargest, 0);
    const auto solid = [](int nWidth, int nHeight) { return solidPlanes(nWidth, nHeight, 235, 128, 128); };
    for (const HostFrame &frame : {yv12Frame(solid(nLargest + 1, 2)), yv12Frame(solid(2, nLargest + 1)),
                                   yv12Frame(solid(nLargest + 3, 4)), nv12Frame(solid(nLargest + 2, 2)),
                                   nv12Frame(solid(2, nLargest + 2))}) {
        const int nWidth = frame.desc.iWidth;
        const int nHeight = frame.desc.iHeight;
        SCOPED_TRACE(testing::Message() << nWidth << " x " << nHeight);
        const std::string sText = reportOn(frame);
        EXPECT_NE(sText.find(std::to_string(nWidth)), std::string::npos) << sText;
        EXPECT_NE(sText.find(std::to_string(nHeight)), std::string::npos) << sText;
    }
    EXPECT_TRUE(playsOn(m_pane));
    const HostFrame wide = yv12Frame(solid(nLargest, 2));
    CoreLog::instance().clear();
    EXPECT_EQ(submit(wide.desc), 0);
    EXPECT_FALSE(isBlack(grab(m_pane)));
    EXPECT_TRUE(reports().empty());
}

XELT_FOR_BOTH_RENDERERS(HostileFrame);
XELT_FOR_BOTH_RENDERERS(HostileTextureSize);

} // namespace
