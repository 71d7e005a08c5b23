// Types and sizes that change from frame to frame.
#include "SubImageTest.h"

#include <climits>

namespace xelttest {
namespace {

constexpr int k_aTypes[] = {
    VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12, VIDEO_DISPLAY_DXGL, 7, 4, VIDEO_DISPLAY_VAGL, 8, -1};

const char *textOf(int nType)
{
    return nType == VIDEO_DISPLAY_DXGL   ? k_pD3D11Text
           : nType == VIDEO_DISPLAY_NV12 ? k_pNv12Text
                                         : k_pYv12Text;
}

class TypeChangeTest : public SubImageTest, public ::testing::WithParamInterface<int>
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(161, 117));
    }

    // The messages about a frame of this type, which differs from the one before.
    void submitAndCheck(int nType, uint32_t nSeed, bool blPaint = true)
    {
        CoreLog::instance().clear();
        submit(ofType(nType, nSeed));
        EXPECT_EQ(CoreLog::instance().messages(), std::vector<std::string>{textOf(nType)}) << nType;
        if (blPaint) {
            EXPECT_TRUE(matches(k_scaled, "type" + std::to_string(nType)));
            EXPECT_TRUE(noGlError());
        }
    }
};

TEST_P(TypeChangeTest, FromItToEveryOtherTypeAndBack)
{
    uint32_t nSeed = 1;
    for (const bool blPaint : {true, false}) {
        for (const int nOther : k_aTypes) {
            if (nOther == GetParam()) {
                continue;
            }
            submitAndCheck(nOther, ++nSeed, blPaint);
            submitAndCheck(GetParam(), ++nSeed, blPaint);
            CoreLog::instance().clear();
            submit(ofType(GetParam(), ++nSeed));
            EXPECT_TRUE(CoreLog::instance().messages().empty()) << "the same type again";
            EXPECT_TRUE(matches());
        }
    }
}

TEST_P(TypeChangeTest, ThePictureComesBackAfterIt)
{
    for (const int nPicture : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        submit(ofType(nPicture, 5));
        EXPECT_TRUE(matches(k_scaled, "before"));
        submit(ofType(GetParam(), 6));
        submit(ofType(nPicture, 7));
        EXPECT_TRUE(matches(k_scaled, "unpainted"));
        submit(ofType(GetParam(), 8));
        EXPECT_TRUE(matches(k_scaled, "it"));
        submit(ofType(nPicture, 9));
        EXPECT_TRUE(matches(k_scaled, "painted"));
    }
}

INSTANTIATE_TEST_SUITE_P(Types, TypeChangeTest, ::testing::ValuesIn(k_aTypes), [](const auto &test) {
    return test.param < 0 ? std::string("MinusOne") : "Type" + std::to_string(test.param);
});

class SubImageSizeTest : public SubImageTest
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(161, 117));
    }
};

// Each size is painted, with textures that were made for the one before.
TEST_F(SubImageSizeTest, SizesChangeUpAndDown)
{
    const QSize aSizes[] = {{64, 64},  {640, 360},   {2, 2},   {1920, 1080}, {1, 1}, {33, 17},
                            {64, 63},  {63, 64},     {64, 64}, {3, 3},       {4, 3}, {128, 32},
                            {32, 128}, {1918, 1080}, {5, 7},   {96, 64}};
    for (const bool blNv12 : {false, true}) {
        // A new pane: an NV12 upload reads rows as the context's last YV12 upload left it.
        open(QSize(161, 117));
        m_model = {};
        CoreLog::instance().clear();
        for (const QSize &size : aSizes) {
            const Planes planes = makePlanes(Pattern::Bars, size.width(), size.height());
            submit(blNv12 ? nv12Frame(planes) : yv12Frame(planes));
            EXPECT_TRUE(matches(k_scaled, (blNv12 ? "nv12-" : "yv12-") + sizeName(size)));
            EXPECT_TRUE(noGlError()) << sizeName(size);
        }
        EXPECT_EQ(logged(blNv12 ? k_pNv12Text : k_pYv12Text), 1);
    }
}

TEST_F(SubImageSizeTest, SizesChangeWithoutAPaintBetween)
{
    for (int i = 0; i < 4; ++i) {
        submit(yv12Frame(makePlanes(Pattern::Bars, 640, 360)));
        submit(yv12Frame(makePlanes(Pattern::Bars, 32, 16)));
    }
    EXPECT_TRUE(matches());
    submit(yv12Frame(makePlanes(Pattern::Bars, 640, 360)));
    EXPECT_TRUE(matches());
}

TEST_F(SubImageSizeTest, TheSizeChangesWithTheType)
{
    for (uint32_t i = 1; i < 4; ++i) {
        submit(nv12Frame(makePlanes(Pattern::Card, 64 * int(i), 48, i)));
        EXPECT_TRUE(matches(k_scaled, "nv12"));
        submit(yv12Frame(makePlanes(Pattern::Card, 32 * int(i), 96, i)));
        EXPECT_TRUE(matches(k_scaled, "yv12"));
    }
}

TEST_F(SubImageSizeTest, AFrameWithoutPixelsInANewSizeIsAZeroedOne)
{
    submit(yv12Frame(makePlanes(Pattern::Card, 96, 64)));
    HostFrame empty = yv12Frame(makePlanes(Pattern::Card, 64, 96));
    empty.desc.pFrameData = nullptr;
    submit(empty);
    EXPECT_TRUE(matches());
    EXPECT_GT(at(80, 50)[1], 100) << "zeroed planes are green";
}

// A shorter length than the picture's: not even textures are made for it.
TEST_F(SubImageSizeTest, AHugeSizeWithAShortLengthLeavesNoGlError)
{
    HostFrame frame = ofType(VIDEO_DISPLAY_YV12);
    frame.desc.iWidth = INT_MAX;
    frame.desc.iHeight = 2;
    frame.desc.nDataLen = 1000;
    ASSERT_EQ(show(handle(), frame), 0);
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_TRUE(noGlError());
    m_model = {};
    submit(withLength(ofType(VIDEO_DISPLAY_YV12)));
    EXPECT_TRUE(matches());
}

} // namespace
} // namespace xelttest
