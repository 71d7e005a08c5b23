// Direct3D and EGL calls of the hardware path that fail where more than one thing comes of it.
#include "InteropFailure.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace xelttest;
using softd3d11::Method;
using softegl::Call;
using testing::ElementsAre;
using testing::IsEmpty;

const Report k_imageNotReleased = reportOf("ReleaseEGL", "eglReleaseTexImage fail!");
const std::string k_sImageNotReleased =
    "EGL error@12291<<. eglReleaseTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER): 0x3003 ";

// The surface is let go of in two places.
TEST_F(InteropFailure, ReleasingTheImageOfTheOldSurface)
{
    for (const unsigned nNth : {1U, 3U}) { // the two calls of the second and of the third frame
        ASSERT_TRUE(softegl::FailCall(Call::ReleaseTexImage, k_nEglBadAlloc, nNth));
        CoreLog::instance().clear();
        for (uint32_t nSeed = 0; nSeed < 4; ++nSeed) {
            EXPECT_EQ(frame(nSeed), 0);
            EXPECT_TRUE(shows("frame"));
        }
        EXPECT_TRUE(reportsAre({k_imageNotReleased}));
        EXPECT_THAT(warnings(), IsEmpty());
        Xelt_ClearDraw(handle());
        paint();
    }
}

TEST_F(InteropFailure, ReleasingTheImageOfTheNewSurface)
{
    ASSERT_TRUE(softegl::FailCall(Call::ReleaseTexImage, k_nEglBadAlloc, 2));
    for (uint32_t nSeed = 0; nSeed < 4; ++nSeed) {
        EXPECT_EQ(frame(nSeed), 0);
        EXPECT_TRUE(shows("frame"));
    }
    EXPECT_TRUE(reportsAre({}));
    EXPECT_THAT(warnings(), ElementsAre(k_sImageNotReleased));
}

TEST_F(InteropFailure, ReleasingNeverWorks)
{
    ASSERT_TRUE(softegl::FailCall(Call::ReleaseTexImage, k_nEglBadAlloc, 1, softegl::kAlways));
    for (uint32_t nSeed = 0; nSeed < 4; ++nSeed) {
        EXPECT_EQ(frame(nSeed), 0);
        EXPECT_TRUE(shows("frame"));
    }
    EXPECT_TRUE(reportsAre(std::vector<Report>(3, k_imageNotReleased)));
    EXPECT_EQ(warnings(), std::vector<std::string>(3, k_sImageNotReleased));
    softegl::ClearFailures();
    EXPECT_EQ(frame(5), 0);
    EXPECT_TRUE(shows("recovered"));
}

TEST_F(InteropFailure, TheNextSubmissionAnswersIt)
{
    const int32_t nFailed = rendererType() == 7 ? 0 : -1; // the sub-image renderer does not count
    ASSERT_TRUE(softd3d11::FailCall(Method::VideoContextVideoProcessorBlt, E_FAIL, 1, 2));
    EXPECT_EQ(frame(0), 0);
    paint();
    EXPECT_EQ(frame(1), nFailed); // stored all the same
    paint();
    EXPECT_EQ(frame(2), nFailed);
    paint();
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
    EXPECT_EQ(frame(3), 0);
    // A paint without anything to draw counts as a good one.
    ASSERT_TRUE(softd3d11::FailCall(Method::VideoContextVideoProcessorBlt, E_FAIL));
    paint();
    paint();
    EXPECT_EQ(frame(4), 0);
    EXPECT_TRUE(shows());
}

TEST_F(InteropFailure, MapFailIsSaidToQtOnce)
{
    ASSERT_TRUE(softd3d11::FailCall(Method::VideoContextVideoProcessorBlt, E_FAIL));
    frame(0);
    paint();
    const auto vecMessages = m_messages.take();
    ASSERT_GE(vecMessages.size(), 2U);
    EXPECT_EQ(vecMessages[vecMessages.size() - 2].type, QtWarningMsg);
    EXPECT_EQ(vecMessages.back(), debugLine("Map fail"));
    paint(); // there is no frame any more
    EXPECT_EQ(m_messages.take().size(), 0U);
}

TEST_F(InteropFailure, WithoutTheExtensionEveryFrameIsReported)
{
    softegl::HideExtension(true);
    for (uint32_t nSeed = 0; nSeed < 3; ++nSeed) {
        CoreLog::instance().clear();
        frame(nSeed);
        EXPECT_TRUE(isBlack(paint()));
        EXPECT_TRUE(reportsAre({k_noExtension, k_noSurface}));
        EXPECT_TRUE(isBlack(paint()));
    }
    softegl::HideExtension(false);
    frame(3);
    EXPECT_TRUE(shows());
}

// The log from the first error report on.
std::vector<CoreLogRecord> recordsFromFirstReport()
{
    std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
    const auto isLock = [](const CoreLogRecord &record) { return record.nKind == CORELOG_BUF_LOCK; };
    vecRecords.erase(vecRecords.begin(), std::find_if(vecRecords.begin(), vecRecords.end(), isLock));
    return vecRecords;
}

// Both are said, the failure first, and the picture shows all the same.
TEST_F(InteropFailure, BindingTheApiNeverWorks)
{
    ASSERT_TRUE(softegl::FailCall(Call::BindApi, k_nEglBadAlloc, 1, softegl::kAlways));
    for (uint32_t nSeed = 0; nSeed < 3; ++nSeed) {
        CoreLog::instance().clear();
        EXPECT_EQ(frame(nSeed), 0);
        EXPECT_TRUE(shows("while it fails"));
        const std::vector<CoreLogRecord> vecRecords = recordsFromFirstReport();
        EXPECT_TRUE(
            isErrorRecord(vecRecords, 0, "CLS_D3D11EGL", "CLS_D3D11EGL::InitD3D11EGL",
                          "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API fail, eglErr=0x3003!"));
        ASSERT_GT(vecRecords.size(), 4U);
        EXPECT_EQ(vecRecords[4].nKind, CORELOG_MSG);
        EXPECT_EQ(vecRecords[4].sText, "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API Success!");
        EXPECT_EQ(CoreLog::instance().errors().size(), 1U);
        EXPECT_EQ(frame(nSeed + 10), 0); // without another initialisation
        EXPECT_TRUE(shows("and the next"));
        EXPECT_EQ(CoreLog::instance().errors().size(), 1U);
        Xelt_ClearDraw(handle());
        paint();
    }
    EXPECT_THAT(warnings(), IsEmpty());
}

} // namespace
