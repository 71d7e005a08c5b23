// Both formats, every size and layout of the source, against the reference.
#include "PaneTest.h"

#include <ostream>

namespace xelttest {
namespace {

enum class Format { Yv12, Nv12 };

struct FormatCase
{
    const char *pName;
    Format format;
    int nExtraPitch; // over the width; -1: pitch 0
    bool blPlanePointers;
};

constexpr FormatCase k_aFormats[] = {
    {"Yv12", Format::Yv12, -1, false},
    {"Nv12Pitch0Planes", Format::Nv12, -1, true},
    {"Nv12Pitch0OneBlock", Format::Nv12, -1, false},
    {"Nv12PitchEqualPlanes", Format::Nv12, 0, true},
    {"Nv12PitchEqualOneBlock", Format::Nv12, 0, false},
    {"Nv12PitchPlus3Planes", Format::Nv12, 3, true},
    {"Nv12PitchPlus3OneBlock", Format::Nv12, 3, false},
    {"Nv12PitchPlus64Planes", Format::Nv12, 64, true},
    {"Nv12PitchPlus64OneBlock", Format::Nv12, 64, false},
};

std::ostream &operator<<(std::ostream &stream, const FormatCase &format)
{
    return stream << format.pName;
}

HostFrame frameOf(const FormatCase &format, const Planes &planes)
{
    if (format.format == Format::Yv12) {
        return yv12Frame(planes);
    }
    const int nPitch = format.nExtraPitch < 0 ? 0 : planes.nWidth + format.nExtraPitch;
    return nv12Frame(planes, {nPitch, format.blPlanePointers});
}

using SizeAndFormat = std::tuple<QSize, FormatCase>;

class FrameFormatTest : public PaneTest, public ::testing::WithParamInterface<SizeAndFormat>
{
};

TEST_P(FrameFormatTest, ShowsThePicture)
{
    const auto &[size, format] = GetParam();
    open(QSize(161, 117));
    submit(frameOf(format, makePlanes(Pattern::Ramp, size.width(), size.height())));
    EXPECT_TRUE(matches(k_scaled, "ramp"));
    submit(frameOf(format, makePlanes(Pattern::Bars, size.width(), size.height())));
    EXPECT_TRUE(matches(k_scaled, "bars"));
}

// At its own size every pixel counts: noise in all planes, one texel a pixel. The large sizes do so in one
// layout of each format and only without a scale factor; otherwise they are seen reduced.
TEST_P(FrameFormatTest, ShowsNoiseAtItsOwnSize)
{
    const auto &[size, format] = GetParam();
    const bool blLarge = size.width() > 700;
    if (blLarge && (scaleFactor() > 1 || (format.nExtraPitch >= 0 && format.nExtraPitch < 64))) {
        open(QSize(161, 117));
        submit(frameOf(format, makePlanes(Pattern::Ramp, size.width(), size.height(), 2)));
        EXPECT_TRUE(matches(k_scaled, "reduced"));
        return;
    }
    open(size);
    submit(frameOf(format, makePlanes(Pattern::Noise, size.width(), size.height())));
    // Chroma of an odd width has no whole number of pixels a texel.
    EXPECT_TRUE(matches(size.width() % 2 == 0 ? ownSizeTolerance() : k_scaled));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, FrameFormatTest,
    ::testing::Combine(::testing::Values(QSize(1, 1), QSize(2, 2), QSize(3, 3), QSize(5, 7), QSize(64, 64),
                                         QSize(641, 479), QSize(1918, 1080), QSize(1920, 1080),
                                         QSize(3840, 2160)),
                       ::testing::ValuesIn(k_aFormats)),
    [](const auto &test) { return sizeName(std::get<0>(test.param)) + std::get<1>(test.param).pName; });

// Flat frames over the whole range of the three values: the conversion alone, to the rounding.
class ConversionTest : public PaneTest, public ::testing::WithParamInterface<Format>
{
protected:
    HostFrame solid(uint8_t nY, uint8_t nU, uint8_t nV) const
    {
        const Planes planes = solidPlanes(16, 16, nY, nU, nV);
        return GetParam() == Format::Yv12 ? yv12Frame(planes) : nv12Frame(planes);
    }
};

TEST_P(ConversionTest, ConvertsEveryCornerOfTheRange)
{
    open(QSize(50, 50));
    for (const int nY : {0, 16, 60, 128, 200, 235, 255}) {
        for (const int nU : {0, 64, 128, 192, 255}) {
            for (const int nV : {0, 64, 128, 192, 255}) {
                submit(solid(uint8_t(nY), uint8_t(nU), uint8_t(nV)));
                EXPECT_TRUE(matches(k_flat)) << "Y " << nY << " U " << nU << " V " << nV;
            }
        }
    }
}

TEST_P(ConversionTest, PlacesBlackAsTheFormatDoes)
{
    open(QSize(50, 50));
    submit(solid(16, 128, 128));
    const bool blYv12 = GetParam() == Format::Yv12;
    // 16 with neutral chroma stays 16 in one format and becomes 0 in the other, give or take what chroma 128
    // lies above one half.
    const auto aRgb = rgbAt(picture(), 25, 25);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(aRgb[i], blYv12 ? 16 : 0, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, ConversionTest, ::testing::Values(Format::Yv12, Format::Nv12),
                         [](const auto &test) { return test.param == Format::Yv12 ? "Yv12" : "Nv12"; });

class DecoderSurfaceTest : public PaneTest
{
};

// A decoder surface with 1080 rows has its chroma after 1088.
TEST_F(DecoderSurfaceTest, ReadsChromaBehindThePaddedHeight)
{
    open(QSize(320, 180));
    const Planes planes = makePlanes(Pattern::Bars, 1920, 1080);
    submit(nv12Frame(planes, {2048, false}));
    EXPECT_TRUE(matches(k_scaled));
    const Faults swapped{0.0, 0.0, true};
    EXPECT_TRUE(imageDiffers(picture(), faultyReference(swapped), k_scaled));
}

TEST_F(DecoderSurfaceTest, CopiesAnAlignedHeightInOnePiece)
{
    open(QSize(320, 180));
    submit(nv12Frame(makePlanes(Pattern::Bars, 1920, 1088), {1920, false}));
    EXPECT_TRUE(matches(k_scaled));
}

// With a pitch equal to the width but a height that is not padded to 16, rows are still read one by one.
TEST_F(DecoderSurfaceTest, EqualPitchWithoutAlignedHeightReadsPaddedSurface)
{
    open(QSize(320, 180));
    const HostFrame frame = nv12Frame(makePlanes(Pattern::Bars, 640, 360), {640, false});
    ASSERT_GT(frame.vecBlocks[0].size(), size_t(640) * 368);
    submit(frame);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(DecoderSurfaceTest, OnePlanePointerAloneIsNotUsed)
{
    open(QSize(64, 64));
    HostFrame frame = nv12Frame(makePlanes(Pattern::Bars, 64, 64), {0, false});
    frame.desc.pPlaneY = frame.vecBlocks[0].data() + 7;
    submit(frame);
    EXPECT_TRUE(matches(ownSizeTolerance()));
}

} // namespace
} // namespace xelttest
