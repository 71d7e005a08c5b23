// Colours whose YCbCr is in every textbook, through the blit. Nothing here is computed as the device does.
#include "DeviceRig.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace rig;

namespace {

constexpr UINT kLimited = D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_16_235;
constexpr UINT kFull = D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_0_255;
constexpr UINT kBt601 = 0;
constexpr UINT kBt709 = 1;

struct Colour
{
    UINT nMatrix, nRange;
    unsigned nLuma, nCb, nCr; // of 8 bits
    int nRed, nGreen, nBlue;
    int nTolerance;
};

constexpr Colour kColours[] = {
    {kBt601, kLimited, 81, 90, 240, 255, 0, 0, 1},       {kBt709, kLimited, 63, 102, 240, 255, 0, 0, 1},
    {kBt601, kLimited, 145, 54, 34, 0, 255, 0, 1},       {kBt709, kLimited, 173, 42, 26, 0, 255, 0, 1},
    {kBt601, kLimited, 41, 240, 110, 0, 0, 255, 1},      {kBt709, kLimited, 32, 240, 118, 0, 0, 255, 1},
    {kBt601, kLimited, 235, 128, 128, 255, 255, 255, 0}, {kBt709, kLimited, 235, 128, 128, 255, 255, 255, 0},
    {kBt601, kLimited, 16, 128, 128, 0, 0, 0, 0},        {kBt709, kLimited, 16, 128, 128, 0, 0, 0, 0},
    {kBt601, kFull, 128, 128, 128, 128, 128, 128, 0},    {kBt709, kFull, 128, 128, 128, 128, 128, 128, 0},
};

// Two by two texels of one colour.
std::vector<std::uint8_t> Packed(DXGI_FORMAT format, const Colour &colour)
{
    const unsigned samples[] = {colour.nLuma, colour.nLuma, colour.nLuma,
                                colour.nLuma, colour.nCb,   colour.nCr};
    std::vector<std::uint8_t> bytes;
    for (const unsigned nSample : samples) {
        if (format == DXGI_FORMAT_P010)
            bytes.push_back(0); // four times the sample in the ten upper bits
        bytes.push_back(static_cast<std::uint8_t>(nSample));
    }
    return bytes;
}

using GoldenTest = SoftDeviceTest;

} // namespace

TEST_F(GoldenTest, ShowsTheColoursThatEverybodyKnows)
{
    const Device on;
    const Processor processor(on, 2, 2);
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(2, 2));
    for (const DXGI_FORMAT format : {DXGI_FORMAT_NV12, DXGI_FORMAT_P010}) {
        const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(format, 2, 2));
        for (const Colour &colour : kColours) {
            WriteSlice(on, video.Get(), 0, Packed(format, colour));
            processor.SetColorSpace(colour.nMatrix, colour.nRange);
            ASSERT_EQ(processor.Blt(video.Get(), 0, target.Get()), S_OK);
            const std::vector<std::uint8_t> pixels = ReadSlice(on, target.Get(), 0);
            const int expected[] = {colour.nBlue, colour.nGreen, colour.nRed, 255};
            for (std::size_t i = 0; i < pixels.size(); ++i)
                EXPECT_LE(std::abs(pixels[i] - expected[i % 4]), colour.nTolerance)
                    << "format " << format << " matrix " << colour.nMatrix << " luma " << colour.nLuma
                    << " channel " << i % 4 << " is " << int{pixels[i]};
        }
    }
}

// What was set for a larger picture is not silently cut down.
TEST_F(GoldenTest, RefusesASourceRectThatALargerInputHasLeft)
{
    const Device on;
    const Processor processor(on, 64, 64);
    const ComPtr<ID3D11Texture2D> large = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 64, 64));
    const ComPtr<ID3D11Texture2D> small = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 32, 32));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(64, 64));
    processor.SetSourceRect(0, 0, 64, 64);
    EXPECT_EQ(processor.Blt(large.Get(), 0, target.Get()), S_OK);
    EXPECT_EQ(processor.Blt(small.Get(), 0, target.Get()), E_INVALIDARG);
    processor.SetSourceRect(0, 0, 32, 32);
    EXPECT_EQ(processor.Blt(small.Get(), 0, target.Get()), S_OK);
}
