#include "BlitReference.h"
#include "DeviceRig.h"

#include <cmath>
#include <cstdint>
#include <iterator>
#include <memory>
#include <ostream>
#include <vector>

using namespace rig;
using reference::VideoFrame;
using softd3d11::FindSharedImage;
using softd3d11::SharedImage;

namespace {

// Half a level is lost by rounding; the fixed point adds at most a tenth.
constexpr double kPlainTolerance = 0.6;

struct BlitCase
{
    DXGI_FORMAT format;
    bool blBt709;
    UINT nRange;

    int bits() const { return format == DXGI_FORMAT_P010 ? 10 : 8; }
    reference::ColorSpace space() const
    {
        return {blBt709, nRange == D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_0_255};
    }
};

std::ostream &operator<<(std::ostream &out, const BlitCase &blit)
{
    return out << (blit.bits() == 10 ? "P010" : "NV12") << (blit.blBt709 ? "Bt709" : "Bt601") << "Range"
               << blit.nRange;
}

class BlitTest : public SoftDeviceTest, public ::testing::WithParamInterface<BlitCase>
{
protected:
    VideoFrame RandomFrame(UINT nWidth, UINT nHeight, unsigned nSeed) const
    {
        return {nWidth, nHeight, GetParam().bits(),
                RandomSlice(Desc(GetParam().format, nWidth, nHeight), nSeed)};
    }

    void SetSample(VideoFrame &frame, std::size_t nIndex, unsigned nValue) const
    {
        if (frame.nBits == 8) {
            frame.packed[nIndex] = static_cast<std::uint8_t>(nValue);
        } else { // the lowest six bits keep their noise, which means nothing
            frame.packed[nIndex * 2] =
                static_cast<std::uint8_t>((nValue << 6) | (frame.packed[nIndex * 2] & 63U));
            frame.packed[nIndex * 2 + 1] = static_cast<std::uint8_t>(nValue >> 2);
        }
    }
};

// The visible pixels of a blit's target; bytes beyond them are to stay as they were.
std::vector<std::uint8_t> TargetPixels(ID3D11Texture2D *pTarget)
{
    const std::shared_ptr<SharedImage> pImage = FindSharedImage(ShareHandle(pTarget));
    const SharedImage::Pixels pixels = pImage->Lock();
    const std::size_t nRowBytes = pImage->Width() * std::size_t{4};
    std::vector<std::uint8_t> visible;
    for (UINT y = 0; y < pImage->Height(); ++y) {
        const std::uint8_t *pRow = pixels.pRows + y * pixels.nPitch;
        visible.insert(visible.end(), pRow, pRow + nRowBytes);
        for (std::size_t i = nRowBytes; i < pixels.nPitch; ++i)
            EXPECT_EQ(pRow[i], 0) << "byte " << i << " of row " << y;
    }
    return visible;
}

// dTolerance is against the exact value, or, for whole levels, against that value rounded.
void ExpectPicture(const std::vector<std::uint8_t> &pixels, const std::vector<reference::Bgr> &expected,
                   double dTolerance, bool blRounded)
{
    ASSERT_EQ(pixels.size(), expected.size() * 4);
    double dWorst = 0;
    std::size_t nWorst = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(pixels[i * 4 + 3], 255) << "alpha of pixel " << i;
        for (std::size_t c = 0; c < 3; ++c) {
            const double dExact = blRounded ? std::round(expected[i][c]) : expected[i][c];
            const double dOff = std::abs(pixels[i * 4 + c] - dExact);
            if (dOff > dWorst) {
                dWorst = dOff;
                nWorst = i;
            }
        }
    }
    EXPECT_LE(dWorst, dTolerance) << "at pixel " << nWorst;
}

std::vector<BlitCase> AllCases()
{
    std::vector<BlitCase> cases;
    for (const DXGI_FORMAT format : {DXGI_FORMAT_NV12, DXGI_FORMAT_P010})
        for (const bool blBt709 : {false, true})
            for (const UINT nRange : {0U, 1U, 2U})
                cases.push_back({format, blBt709, nRange});
    return cases;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(ColorSpaces, BlitTest, ::testing::ValuesIn(AllCases()),
                         ::testing::PrintToStringParamName());

// Every luma level beside random chroma, and every pair of telling chroma levels.
TEST_P(BlitTest, ConvertsEveryLevel)
{
    const UINT nLevels = 1U << GetParam().bits();
    constexpr UINT kRows = 64;
    VideoFrame frame = RandomFrame(nLevels, kRows, 40);
    for (std::size_t y = 0; y < kRows; ++y)
        for (std::size_t x = 0; x < nLevels; ++x)
            SetSample(frame, y * nLevels + x, static_cast<unsigned>(x));
    const unsigned nUnit = nLevels / 256;
    const unsigned telling[] = {0, 1, 16 * nUnit, 128 * nUnit, 240 * nUnit, nLevels - 1};
    std::size_t nRow = kRows; // the chroma's first
    for (const unsigned nCb : telling) {
        for (const unsigned nCr : {0U, 128 * nUnit, nLevels - 1}) {
            for (std::size_t x = 0; x < nLevels; x += 2) {
                SetSample(frame, nRow * nLevels + x, nCb);
                SetSample(frame, nRow * nLevels + x + 1, nCr);
            }
            ++nRow;
        }
    }
    const Device on;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(GetParam().format, nLevels, kRows));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(nLevels, kRows));
    const Processor processor(on, nLevels, kRows);
    WriteSlice(on, video.Get(), 0, frame.packed);
    processor.SetColorSpace(GetParam().blBt709 ? 1 : 0, GetParam().nRange);
    ASSERT_EQ(processor.Blt(video.Get(), 0, target.Get()), S_OK);
    ExpectPicture(TargetPixels(target.Get()),
                  Picture(frame, GetParam().space(), {0, 0, nLevels, kRows}, nLevels, kRows), kPlainTolerance,
                  false);
}

TEST_P(BlitTest, ConvertsGreyToGrey)
{
    const UINT nLevels = 1U << GetParam().bits();
    VideoFrame frame = RandomFrame(nLevels, 2, 41);
    for (unsigned i = 0; i < nLevels * 3; ++i)
        SetSample(frame, i, i < nLevels * 2 ? i % nLevels : nLevels / 2);
    const Device on;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(GetParam().format, nLevels, 2));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(nLevels, 2));
    const Processor processor(on, nLevels, 2);
    WriteSlice(on, video.Get(), 0, frame.packed);
    processor.SetColorSpace(GetParam().blBt709 ? 1 : 0, GetParam().nRange);
    ASSERT_EQ(processor.Blt(video.Get(), 0, target.Get()), S_OK);
    const std::vector<std::uint8_t> pixels = TargetPixels(target.Get());
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        ASSERT_EQ(pixels[i], pixels[i + 1]);
        ASSERT_EQ(pixels[i], pixels[i + 2]);
    }
    const std::size_t nBlack = GetParam().space().blFullRange ? 0 : nLevels / 16;
    const std::size_t nWhite = GetParam().space().blFullRange ? nLevels - 1 : nLevels / 256 * 235;
    EXPECT_EQ(pixels[nBlack * 4], 0);
    EXPECT_EQ(pixels[nWhite * 4], 255);
    EXPECT_EQ(pixels[0], 0);
    EXPECT_EQ(pixels[pixels.size() - 4], 255);
}

TEST_P(BlitTest, ShowsTheSliceOfTheView)
{
    constexpr UINT kSlices = 16;
    const Device on;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(GetParam().format, 34, 18, kSlices));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(34, 18));
    const Processor processor(on, 34, 18);
    processor.SetColorSpace(GetParam().blBt709 ? 1 : 0, GetParam().nRange);
    for (UINT i = 0; i < kSlices; ++i)
        WriteSlice(on, video.Get(), i, RandomFrame(34, 18, 50 + i).packed);
    for (UINT i = 0; i < kSlices; ++i) {
        ASSERT_EQ(processor.Blt(video.Get(), i, target.Get()), S_OK);
        ExpectPicture(TargetPixels(target.Get()),
                      Picture(RandomFrame(34, 18, 50 + i), GetParam().space(), {0, 0, 34, 18}, 34, 18),
                      kPlainTolerance, false);
    }
}

// Sizes about the length of the vectorised blocks, odd edges, single pixels.
TEST_P(BlitTest, HonoursTheSourceRect)
{
    const Device on;
    const VideoFrame frame = RandomFrame(202, 22, 42);
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(GetParam().format, 202, 22));
    WriteSlice(on, video.Get(), 0, frame.packed);
    const reference::Rect rects[] = {{0, 0, 202, 22}, {1, 1, 201, 21}, {0, 0, 1, 1},   {201, 21, 1, 1},
                                     {1, 0, 1, 2},    {1, 3, 2, 3},    {0, 5, 63, 4},  {1, 5, 63, 4},
                                     {1, 5, 64, 4},   {1, 5, 65, 4},   {2, 6, 64, 5},  {3, 7, 128, 3},
                                     {4, 7, 129, 3},  {5, 8, 127, 2},  {74, 9, 128, 1}};
    for (const reference::Rect &rect : rects) {
        const auto nWidth = static_cast<UINT>(rect.nWidth);
        const auto nHeight = static_cast<UINT>(rect.nHeight);
        const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(nWidth, nHeight));
        const Processor processor(on, nWidth, nHeight);
        processor.SetColorSpace(GetParam().blBt709 ? 1 : 0, GetParam().nRange);
        const auto nLeft = static_cast<LONG>(rect.nLeft);
        const auto nTop = static_cast<LONG>(rect.nTop);
        processor.SetSourceRect(nLeft, nTop, nLeft + static_cast<LONG>(nWidth),
                                nTop + static_cast<LONG>(nHeight));
        ASSERT_EQ(processor.Blt(video.Get(), 0, target.Get()), S_OK);
        SCOPED_TRACE(::testing::Message()
                     << rect.nLeft << ' ' << rect.nTop << ' ' << nWidth << 'x' << nHeight);
        ExpectPicture(TargetPixels(target.Get()), Picture(frame, GetParam().space(), rect, nWidth, nHeight),
                      kPlainTolerance, false);
    }
}

TEST_P(BlitTest, ScalesTheSourceRect)
{
    const Device on;
    const VideoFrame frame = RandomFrame(66, 34, 43);
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(GetParam().format, 66, 34));
    WriteSlice(on, video.Get(), 0, frame.packed);
    const struct
    {
        reference::Rect rect;
        UINT nWidth, nHeight;
    } cases[] = {{{0, 0, 66, 34}, 132, 68}, {{0, 0, 66, 34}, 33, 17}, {{0, 0, 66, 34}, 66, 35},
                 {{0, 0, 66, 34}, 65, 34},  {{3, 5, 7, 9}, 50, 40},   {{65, 33, 1, 1}, 5, 4},
                 {{1, 1, 65, 33}, 1, 1},    {{2, 0, 2, 34}, 9, 100},  {{0, 0, 66, 34}, 7, 3},
                 {{10, 10, 1, 20}, 3, 20}};
    for (const auto &scaling : cases) {
        const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(scaling.nWidth, scaling.nHeight));
        const Processor processor(on, scaling.nWidth, scaling.nHeight);
        processor.SetColorSpace(GetParam().blBt709 ? 1 : 0, GetParam().nRange);
        const reference::Rect &rect = scaling.rect;
        processor.SetSourceRect(static_cast<LONG>(rect.nLeft), static_cast<LONG>(rect.nTop),
                                static_cast<LONG>(rect.nLeft + rect.nWidth),
                                static_cast<LONG>(rect.nTop + rect.nHeight));
        ASSERT_EQ(processor.Blt(video.Get(), 0, target.Get()), S_OK);
        SCOPED_TRACE(::testing::Message() << rect.nWidth << 'x' << rect.nHeight << " to " << scaling.nWidth
                                          << 'x' << scaling.nHeight);
        ExpectPicture(TargetPixels(target.Get()),
                      Picture(frame, GetParam().space(), rect, scaling.nWidth, scaling.nHeight), 1, true);
    }
}

using BlitTargetTest = SoftDeviceTest;

TEST_F(BlitTargetTest, IsBlackWithoutAStream)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(5, 3));
    const std::vector<std::uint8_t> bytes = RandomBytes(60, 44);
    on.context->UpdateSubresource(target.Get(), 0, nullptr, bytes.data(), 20, 0);
    const Processor processor(on, 5, 3);
    const ComPtr<ID3D11VideoProcessorOutputView> output = processor.OutputView(target.Get());
    const std::shared_ptr<SharedImage> pImage = FindSharedImage(ShareHandle(target.Get()));
    const D3D11_VIDEO_PROCESSOR_STREAM none = {};
    EXPECT_EQ(on.videoContext->VideoProcessorBlt(processor.processor.Get(), output.Get(), 0, 1, &none), S_OK);
    EXPECT_EQ(pImage->Generation(), 2U);
    const std::vector<std::uint8_t> pixels = TargetPixels(target.Get());
    for (std::size_t i = 0; i < pixels.size(); ++i)
        EXPECT_EQ(pixels[i], i % 4 == 3 ? 255 : 0);
}

TEST_F(BlitTargetTest, KeepsTwoProcessorsApart)
{
    const Device on;
    const VideoFrame frame = {8, 8, 8, RandomBytes(96, 45)};
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 8, 8));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(8, 8));
    WriteSlice(on, video.Get(), 0, frame.packed);
    const Processor one(on, 8, 8);
    const Processor other(on, 8, 8);
    one.SetColorSpace(1, D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_16_235);
    other.SetColorSpace(0, D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_0_255);
    ASSERT_EQ(one.Blt(video.Get(), 0, target.Get()), S_OK);
    ExpectPicture(TargetPixels(target.Get()), Picture(frame, {true, false}, {0, 0, 8, 8}, 8, 8),
                  kPlainTolerance, false);
    ASSERT_EQ(other.Blt(video.Get(), 0, target.Get()), S_OK);
    ExpectPicture(TargetPixels(target.Get()), Picture(frame, {false, true}, {0, 0, 8, 8}, 8, 8),
                  kPlainTolerance, false);
}
