// In which order the renderers call OpenGL, where pixels do not tell.
#include "GlRecorder.h"
#include "InsidePane.h"
#include "InsideYuv.h"
#include "OverlayHost.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace xelttest {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

using Calls = std::vector<std::string>;

// Those among the calls that begin with one of the words.
Calls only(const Calls &vecCalls, const std::vector<std::string> &vecWords)
{
    Calls vecFound;
    for (const std::string &sCall : vecCalls) {
        const bool blWanted = std::any_of(vecWords.begin(), vecWords.end(), [&](const std::string &sWord) {
            return sCall.compare(0, sWord.size(), sWord) == 0;
        });
        if (blWanted) {
            vecFound.push_back(sCall);
        }
    }
    return vecFound;
}

// Up to the picture's draw: what composes the window comes behind it.
Calls pictureCalls(GlRecorder &recorder)
{
    Calls vecCalls = recorder.take();
    const auto itDraw = std::find(vecCalls.rbegin(), vecCalls.rend(), "arrays 5 0 4");
    vecCalls.erase(itDraw.base(), vecCalls.end());
    return vecCalls;
}

class YuvCalls : public InsideYuvTest
{
protected:
    void SetUp() override
    {
        InsideYuvTest::SetUp();
        openWindow();
    }
};

class SubImageCalls : public InsideTest
{
protected:
    void SetUp() override
    {
        InsideTest::SetUp();
        openWindow();
    }
};

const std::vector<std::string> k_vecUpload{"unit", "texture 3553", "store", "image", "part"};

// The alignment is set with the first texture bound already.
TEST_F(YuvCalls, PlanarPicturesAreUploadedPlaneByPlane)
{
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12, QSize(96, 64))), 0);
    pane().picture();
    GlRecorder recorder;
    recorder.m_blSurroundings = true;
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12, QSize(96, 64), 2)), 0);
    pane().picture();
    const auto textureOf = [](GLuint nName) { return "texture 3553 " + std::to_string(nName); };
    EXPECT_THAT(only(pictureCalls(recorder), k_vecUpload),
                ElementsAre("unit 0", textureOf(pane().m_nTexIdY), "store 3317 1",
                            StartsWith("image 3553 0 6403 96 64 0 6403 5121"), "unit 1",
                            textureOf(pane().m_nTexIdU), StartsWith("image 3553 0 6403 48 32 0 6403 5121"),
                            "unit 2", textureOf(pane().m_nTexIdV),
                            StartsWith("image 3553 0 6403 48 32 0 6403 5121")));
}

TEST_F(YuvCalls, InterleavedPicturesLeaveTheAlignment)
{
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_NV12, QSize(96, 64))), 0);
    pane().picture();
    GlRecorder recorder;
    recorder.m_blSurroundings = true;
    pane().picture();
    EXPECT_THAT(only(pictureCalls(recorder), k_vecUpload),
                ElementsAre("unit 0", StartsWith("texture 3553"),
                            StartsWith("image 3553 0 6403 96 64 0 6403 5121"), "unit 1",
                            StartsWith("texture 3553"), StartsWith("image 3553 0 33319 48 32 0 33319 5121")));
}

TEST_F(SubImageCalls, PicturesAreUpdatedInPlace)
{
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12, QSize(96, 64))), 0);
    pane().picture();
    GlRecorder recorder;
    recorder.m_blSurroundings = true;
    pane().picture();
    EXPECT_THAT(only(pictureCalls(recorder), k_vecUpload),
                ElementsAre("store 3317 1", "unit 0", StartsWith("texture 3553"),
                            "part 3553 0 0 0 96 64 6403 5121", "unit 1", StartsWith("texture 3553"),
                            "part 3553 0 0 0 48 32 6403 5121", "unit 2", StartsWith("texture 3553"),
                            "part 3553 0 0 0 48 32 6403 5121"));
}

// Flag, colour and line width are the record's, the opacity is the pass's and comes last.
TEST_F(YuvCalls, AShapeIsSetUpInOrder)
{
    OverlayHost host;
    host.vecRecords = {overlayRecord(DRAWINFO_POLYLINE, {{10, 10}, {60, 40}}, overlayColour(252, 126, 0), 1)};
    ASSERT_EQ(setDrawInfoCallback(pane().handle(), &OverlayHost::callback, &host), -1) << "not registered";
    const XeltDrawInfoCallbackPara para{&OverlayHost::callback, &host};
    ASSERT_EQ(pane().SetParam(XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para), 0);
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    pane().picture();
    GlRecorder recorder;
    recorder.m_blSurroundings = true;
    pane().picture();
    Calls vecCalls = pictureCalls(recorder);
    const auto itLine = std::find_if(vecCalls.begin(), vecCalls.end(), [](const std::string &sCall) {
        return sCall.compare(0, 5, "line ") == 0;
    });
    ASSERT_GE(itLine - vecCalls.begin(), 2);
    ASSERT_GE(vecCalls.end() - itLine, 2);
    EXPECT_THAT(Calls(itLine - 2, itLine + 2),
                ElementsAre(EndsWith(" is 1"), EndsWith(" is 1.000000 0.000000 -1.000000"), "line 1.000000",
                            EndsWith(" is 0.000000")));
}

} // namespace
} // namespace xelttest
