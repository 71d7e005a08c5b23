// The software device's conversion beside the real processor's, on the same frames.
#include "Processor.h"
#include "VpTest.h"

#include "softd3d11/PictureBlit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace xelttest;

struct Apart
{
    int nGreatest = 0;
    double dMean = 0;
};

Apart compare(const std::vector<uint8_t> &a, const std::vector<uint8_t> &b)
{
    Apart difference;
    double dSum = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        const int n = std::abs(int{a[i]} - int{b[i]});
        difference.nGreatest = std::max(difference.nGreatest, n);
        dSum += i % 4 != 3 ? n : 0;
    }
    difference.dMean = dSum / (3.0 * static_cast<double>(a.size()) / 4);
    return difference;
}

class Agreement : public VpTest
{
protected:
    std::vector<uint8_t> software(const Planes &planes, bool blBt601, bool blFull)
    {
        const std::vector<uint8_t> aBytes = packedNv12Bytes(planes);
        softd3d11::VideoPicture source{};
        source.format = DXGI_FORMAT_NV12;
        source.pLuma = aBytes.data();
        source.pChroma = aBytes.data() + planes.aY.size();
        source.nPitch = static_cast<UINT>(planes.nWidth);
        std::vector<uint8_t> aPixels(planes.aY.size() * 4);
        softd3d11::BgraPicture target{};
        target.pRows = aPixels.data();
        target.nPitch = static_cast<UINT>(planes.nWidth) * 4;
        target.nWidth = static_cast<UINT>(planes.nWidth);
        target.nHeight = static_cast<UINT>(planes.nHeight);
        softd3d11::BlitPicture(source, {0, 0, target.nWidth, target.nHeight}, colorSpace(blBt601, blFull),
                               target);
        return aPixels;
    }
};

// By definition no level may be more than rounding apart. A processor with habits of its own is further away, how far
// is printed; but it is nearer by the right matrix than by the other one.
TEST_F(Agreement, OnTheSameFrames)
{
    const bool blByDefinition = processorHabits().nWrongRows == 0;
    for (const Pattern pattern : {Pattern::Card, Pattern::Ramp, Pattern::Noise}) {
        for (const QSize &size : {QSize(64, 48), QSize(98, 66)}) {
            use(size);
            const Planes planes = makePlanes(pattern, size.width(), size.height(), 7);
            m_textures->fill(0, planes);
            for (const bool blBt601 : {false, true}) {
                for (const bool blFull : {false, true}) {
                    m_vp->setColorSpace(blBt601 ? dx::kColorSpaceBt601 : dx::kColorSpaceBt709);
                    m_vp->setColorRange(blFull ? dx::kColorRangeFull : dx::kColorRangeLimited);
                    ASSERT_TRUE(process());
                    const Apart apart = compare(pixels(), software(planes, blBt601, blFull));
                    std::printf("pattern %d, %d x %d, BT.%s, %s: greatest %d, mean %.2f\n",
                                static_cast<int>(pattern), size.width(), size.height(),
                                blBt601 ? "601" : "709", blFull ? "full" : "limited", apart.nGreatest,
                                apart.dMean);
                    if (blByDefinition) {
                        EXPECT_LE(apart.nGreatest, 1);
                        continue;
                    }
                    EXPECT_LE(apart.dMean, blFull ? 9.0 : 7.5);
                    if (pattern == Pattern::Card && !blFull) { // the one with plain colours
                        EXPECT_LT(apart.dMean, compare(pixels(), software(planes, !blBt601, blFull)).dMean);
                    }
                }
            }
        }
    }
}

} // namespace
