// What a pane makes of one frame after another: types, lengths, sizes, missing pointers, short descriptors.
#include "PaneTest.h"

#include <climits>
#include <cstring>

namespace xelttest {
namespace {

const char *const k_pYv12Text =
    "ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player";
const char *const k_pNv12Text = "ShowYuvFrame Display type is VIDEO_DISPLAY_NV12,The Player is DxvaPlayer";
const char *const k_pVaglText = "ShowYuvFrame Display type is VIDEO_DISPLAY_VAGL,The Player is HWVaapiPlayer";

class FrameStateTest : public PaneTest
{
protected:
    void SetUp() override
    {
        PaneTest::SetUp();
        open(QSize(161, 117));
    }

    static Planes planes(uint32_t nSeed = 1) { return makePlanes(Pattern::Card, 96, 64, nSeed); }
    static HostFrame ofType(int nType, uint32_t nSeed = 1)
    {
        HostFrame frame = yv12Frame(planes(nSeed));
        frame.desc.nDisplayType = nType;
        return frame;
    }
    int logged(const char *pText) const { return CoreLog::instance().count(pText); }
};

TEST_F(FrameStateTest, EachFrameReplacesTheOneBefore)
{
    for (uint32_t nSeed = 1; nSeed < 5; ++nSeed) {
        submit(yv12Frame(planes(nSeed)));
        EXPECT_TRUE(matches(k_scaled, "seed" + std::to_string(nSeed)));
    }
    EXPECT_EQ(logged(k_pYv12Text), 1);
}

TEST_F(FrameStateTest, AFrameAsksForARepaint)
{
    drainEvents();
    const int nPaints = window().paints(handle());
    submit(yv12Frame(planes()));
    EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
}

TEST_F(FrameStateTest, SizesChangeFromFrameToFrame)
{
    for (const QSize &size : {QSize(64, 64), QSize(640, 360), QSize(2, 2), QSize(33, 17), QSize(128, 32)}) {
        submit(yv12Frame(makePlanes(Pattern::Bars, size.width(), size.height())));
        EXPECT_TRUE(matches(k_scaled, sizeName(size)));
    }
}

TEST_F(FrameStateTest, TheTypeChangesBackAndForth)
{
    for (uint32_t nRound = 1; nRound < 4; ++nRound) {
        submit(yv12Frame(planes(nRound)));
        EXPECT_TRUE(matches(k_scaled, "yv12"));
        submit(nv12Frame(planes(nRound)));
        EXPECT_TRUE(matches(k_scaled, "nv12"));
    }
    EXPECT_EQ(logged(k_pYv12Text), 3);
    EXPECT_EQ(logged(k_pNv12Text), 3);
}

TEST_F(FrameStateTest, TheTypeChangesWithoutAPaintBetween)
{
    submit(yv12Frame(planes()));
    submit(nv12Frame(planes(2)));
    submit(yv12Frame(planes(3)));
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, UnknownTypesShowNoPicture)
{
    submit(ofType(0));
    EXPECT_FALSE(isBlack(picture()));
    CoreLog::instance().clear();
    for (const int nType : {7, 1, 2, 9, -2, INT_MAX, INT_MIN}) {
        submit(ofType(nType));
        EXPECT_TRUE(isBlack(picture())) << nType;
        EXPECT_EQ(logged(k_pYv12Text), 1) << nType;
        CoreLog::instance().clear();
    }
    submit(ofType(0));
    EXPECT_TRUE(matches(k_scaled)) << "the picture is back";
}

// -1 stands for no frame; a host that sends it gets a black pane, and no change of type on a new one.
TEST_F(FrameStateTest, TheTypeMinusOneIsNoFrame)
{
    submit(ofType(-1));
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_EQ(logged(k_pYv12Text), 0);
    submit(ofType(0));
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, VaApiTypesAreLoggedAndShowNothing)
{
    submit(ofType(5));
    submit(ofType(5));
    EXPECT_EQ(logged(k_pVaglText), 1);
    submit(ofType(8));
    EXPECT_EQ(logged(k_pVaglText), 2);
    EXPECT_TRUE(isBlack(picture()));
}

TEST_F(FrameStateTest, EveryFrameOfTypeFourCountsAsAChange)
{
    for (int nFrame = 1; nFrame <= 4; ++nFrame) {
        submit(ofType(4));
        EXPECT_TRUE(isBlack(picture()));
        EXPECT_EQ(logged(k_pYv12Text), nFrame);
    }
    submit(ofType(5));
    EXPECT_EQ(logged(k_pVaglText), 0) << "4 is stored as 5";
}

TEST_F(FrameStateTest, AShortDescriptorIsYv12)
{
    HostFrame frame = ofType(3);
    ASSERT_EQ(Xelt_ShowYuvFrame(handle(), &frame.desc, 40), 0);
    frame.desc.nDisplayType = 0;
    m_model = bufferModel(frame.desc);
    EXPECT_TRUE(matches(k_scaled));
    EXPECT_EQ(logged(k_pYv12Text), 1);
}

TEST_F(FrameStateTest, ALongDescriptorIsReadUpTo112Bytes)
{
    const HostFrame frame = yv12Frame(planes());
    std::array<uint8_t, 200> aLong;
    aLong.fill(0xEE);
    std::memcpy(aLong.data(), &frame.desc, sizeof frame.desc);
    ASSERT_EQ(Xelt_ShowYuvFrame(handle(), aLong.data(), aLong.size()), 0);
    m_model = bufferModel(frame.desc);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, DescriptorsOfEveryLengthAreReadNoFurther)
{
    const HostFrame frame = yv12Frame(planes());
    for (uint32_t nLength = 1; nLength <= XELT_FRAME_DESC_SIZE; ++nLength) {
        const GuardedBytes block(nLength);
        std::memcpy(block.data(), &frame.desc, nLength);
        // Width and height stand at 16 to 23; with neither there is nothing to store.
        const bool blHasSize = nLength > 20;
        EXPECT_EQ(Xelt_ShowYuvFrame(handle(), block.data(), nLength), blHasSize ? 0 : -1) << nLength;
    }
    m_model = bufferModel(frame.desc);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, NothingToReadIsRefused)
{
    const HostFrame frame = yv12Frame(planes());
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), nullptr, XELT_FRAME_DESC_SIZE), -1);
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), &frame.desc, 0), -1);
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), &frame.desc, 0x80000000u), -1);
    EXPECT_EQ(logged(k_pYv12Text), 0);
    EXPECT_TRUE(isBlack(picture()));
}

TEST_F(FrameStateTest, NullPlanesRepaintTheOldPicture)
{
    submit(yv12Frame(planes()));
    EXPECT_TRUE(matches(k_scaled));
    drainEvents();
    const int nPaints = window().paints(handle());
    HostFrame empty = yv12Frame(planes());
    empty.desc.pFrameData = nullptr;
    submit(empty);
    EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, NullPlanesOfNv12RepaintTheOldPicture)
{
    submit(nv12Frame(planes()));
    HostFrame empty = nv12Frame(planes());
    empty.desc.pPlaneY = nullptr;
    empty.desc.pPlaneUV = nullptr;
    submit(empty);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, NegativePitchesCopyNothing)
{
    submit(nv12Frame(planes()));
    for (const int nPitch : {-1, -96, INT_MIN}) {
        HostFrame other = nv12Frame(planes(2));
        other.desc.nPitch = nPitch;
        submit(other);
        EXPECT_TRUE(matches(k_scaled)) << nPitch;
    }
}

TEST_F(FrameStateTest, SizesBelowOneAreRefusedAndKeepThePicture)
{
    submit(yv12Frame(planes()));
    const std::pair<int, int> aSizes[] = {{0, 64}, {96, 0}, {0, 0}, {-1, 64}, {96, -5}, {INT_MIN, INT_MIN}};
    for (const auto &[nWidth, nHeight] : aSizes) {
        HostFrame frame = yv12Frame(planes(2));
        frame.desc.iWidth = nWidth;
        frame.desc.iHeight = nHeight;
        CoreLog::instance().clear();
        EXPECT_EQ(show(handle(), frame), -1);
        EXPECT_EQ(CoreLog::instance().errors(),
                  std::vector<std::string>{"ShowYuvFrame iWidth = " + std::to_string(nWidth) +
                                           " iHeight = " + std::to_string(nHeight) + " is invalid param"});
        EXPECT_TRUE(matches(k_scaled));
    }
}

TEST_F(FrameStateTest, SizesBelowOneBeforeAnyFrameAreRefused)
{
    HostFrame frame = yv12Frame(planes());
    frame.desc.iWidth = 0;
    EXPECT_EQ(show(handle(), frame), -1);
    EXPECT_TRUE(CoreLog::instance().errors().empty()) << "without a buffer there is no message";
    EXPECT_TRUE(isBlack(picture()));
}

TEST_F(FrameStateTest, SizesThatNoMemoryHoldsAreRefused)
{
    for (const auto &[nWidth, nHeight] :
         {std::pair<int, int>{INT_MAX, INT_MAX}, {65536, 65536}, {INT_MAX, 2}, {46341, 46341}}) {
        HostFrame frame = yv12Frame(planes());
        frame.desc.iWidth = nWidth;
        frame.desc.iHeight = nHeight;
        frame.desc.pFrameData = nullptr;
        EXPECT_EQ(show(handle(), frame), -1) << nWidth << " x " << nHeight;
        EXPECT_TRUE(isBlack(picture()));
    }
    submit(yv12Frame(planes()));
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, ALargeSizeWithASmallDeclaredLengthReadsAndShowsNothingForeign)
{
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        HostFrame frame = ofType(nType);
        frame.desc.iWidth = INT_MAX;
        frame.desc.iHeight = 2;
        frame.desc.nDataLen = static_cast<int32_t>(frame.vecBlocks[0].size());
        frame.desc.pFrameData = nType == VIDEO_DISPLAY_YV12 ? frame.desc.pFrameData : nullptr;
        show(handle(), frame);
        EXPECT_TRUE(isBlack(picture())) << nType;
    }
    m_model = {};
    submit(yv12Frame(planes()));
    EXPECT_TRUE(matches(k_scaled));
}

// A longer length than the picture: all of it is copied, the surplus never shows.
TEST_F(FrameStateTest, ALongerLengthThanThePictureShowsThePicture)
{
    const HostFrame picture = yv12Frame(planes());
    for (const size_t nMore : {size_t(1), size_t(500), size_t(100000)}) {
        HostFrame frame = yv12Frame(planes());
        frame.vecBlocks[0] = GuardedBytes(picture.vecBlocks[0].size() + nMore);
        std::memset(frame.vecBlocks[0].data(), 0xEE, frame.vecBlocks[0].size());
        std::memcpy(frame.vecBlocks[0].data(), picture.vecBlocks[0].data(), picture.vecBlocks[0].size());
        frame.desc.pFrameData = frame.vecBlocks[0].data();
        frame.desc.nDataLen = static_cast<int32_t>(frame.vecBlocks[0].size());
        submit(frame);
        EXPECT_TRUE(matches(k_scaled)) << nMore;
    }
}

// A shorter length than the picture: only that much is read, and the incomplete picture is not shown.
TEST_F(FrameStateTest, AShorterLengthThanThePictureShowsNothing)
{
    const HostFrame picture1 = yv12Frame(planes());
    const size_t nWhole = picture1.vecBlocks[0].size();
    for (const size_t nLength : {size_t(1), size_t(100), size_t(96 * 64), nWhole - 1}) {
        HostFrame frame = yv12Frame(planes());
        frame.vecBlocks[0] = GuardedBytes(nLength);
        std::memcpy(frame.vecBlocks[0].data(), picture1.vecBlocks[0].data(), nLength);
        frame.desc.pFrameData = frame.vecBlocks[0].data();
        frame.desc.nDataLen = static_cast<int32_t>(nLength);
        submit(frame);
        EXPECT_TRUE(isBlack(picture())) << nLength;
    }
    HostFrame whole = yv12Frame(planes());
    whole.desc.nDataLen = static_cast<int32_t>(nWhole);
    submit(whole);
    EXPECT_TRUE(matches(k_scaled)) << "the exact length shows it";
}

// A later frame without a length makes the buffer grow that was made for the short one, if it has pixels.
TEST_F(FrameStateTest, AShortBufferGrowsForTheNextFrame)
{
    HostFrame brief = yv12Frame(planes());
    brief.desc.nDataLen = 1000;
    submit(brief);
    HostFrame nothing = yv12Frame(planes());
    nothing.desc.pFrameData = nullptr;
    submit(nothing);
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_TRUE(matches({0.5, 0.5, 0.0}));
    submit(yv12Frame(planes()));
    EXPECT_TRUE(matches(k_scaled));
    submit(brief);
    EXPECT_TRUE(isBlack(picture()));
    HostFrame whole = yv12Frame(planes());
    whole.desc.nDataLen = static_cast<int32_t>(whole.vecBlocks[0].size());
    submit(whole);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(FrameStateTest, ANv12LengthSizesTheBufferAndNotTheCopy)
{
    HostFrame frame = nv12Frame(planes());
    for (const int nLength : {96 * 64 * 3 / 2 - 1, 100, 96 * 64, 1}) {
        frame.desc.nDataLen = nLength;
        submit(frame);
        EXPECT_TRUE(isBlack(picture())) << nLength;
    }
    for (const int nLength : {96 * 64 * 3 / 2, 96 * 64 * 2, 1000000}) {
        frame.desc.nDataLen = nLength;
        submit(frame);
        EXPECT_TRUE(matches(k_scaled)) << nLength;
    }
}

TEST_F(FrameStateTest, SizesThatNoTextureHasShowNothing)
{
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        for (const QSize &size :
             {QSize(100000, 2), QSize(2, 100000), QSize(700000000, 1), QSize(1, 700000000)}) {
            HostFrame frame = ofType(nType);
            frame.desc.pFrameData = nullptr;
            frame.desc.iWidth = size.width();
            frame.desc.iHeight = size.height();
            ASSERT_EQ(show(handle(), frame), 0);
            EXPECT_TRUE(isBlack(picture())) << sizeName(size) << " of type " << nType;
            m_model = {};
            submit(yv12Frame(planes()));
            EXPECT_TRUE(matches(k_scaled)) << sizeName(size) << " of type " << nType;
        }
    }
}

// The alignment is state of the context: NV12 leaves it alone, so what YV12 sets stays. The rows of an NV12
// picture of odd width are then read as they lie, and without YV12 before it they are skewed.
TEST_F(FrameStateTest, Nv12RowsAreReadWithTheAlignmentThatYv12Left)
{
    const HostFrame odd = nv12Frame(makePlanes(Pattern::Card, 97, 64));
    submit(odd);
    EXPECT_TRUE(matches(k_scaled, "skewed"));
    const QImage skewed = picture();
    submit(yv12Frame(planes()));
    EXPECT_TRUE(matches(k_scaled, "yv12"));
    submit(odd);
    m_model.nNv12Alignment = 1;
    EXPECT_TRUE(matches(k_scaled, "straight"));
    EXPECT_NE(picture(), skewed);
}

TEST_F(FrameStateTest, PaddedNv12WithAShortLengthReadsAndShowsNothingForeign)
{
    HostFrame frame = nv12Frame(planes(), {160, false});
    frame.desc.nDataLen = 96 * 64;
    submit(frame);
    EXPECT_TRUE(isBlack(picture()));
}

} // namespace
} // namespace xelttest
