// VideoYCbCr.frag on rectangle textures, whose coordinates are texels. Desktop OpenGL alone has them.
#include "YCbCrBench.h"

namespace {

using namespace xelttest;

using RectangleTest = YCbCrBench;

TEST_F(RectangleTest, ShowsThePictureOfOrdinaryTextures)
{
    for (const bool blNv12 : {false, true}) {
        for (const bool blGl3 : {false, true}) {
            SCOPED_TRACE(testing::Message() << blNv12 << ' ' << blGl3);
            YCbCrSettings settings;
            settings.blRectangle = true;
            settings.blNv12 = blNv12;
            settings.blGl3 = blGl3;
            expectPicture(settings);
        }
    }
}

TEST_F(RectangleTest, SharpnessStepsByOneTexel)
{
    YCbCrSettings settings;
    settings.blRectangle = true;
    settings.dSharpness = 1.5;
    expectPicture(settings);
}

TEST_F(RectangleTest, TransferStepAndFillWork)
{
    YCbCrSettings settings;
    settings.blRectangle = true;
    settings.blNv12 = true;
    for (const int nTransfer : {k_nTrcBt709, k_nTrcPq, k_nTrcHlg}) {
        SCOPED_TRACE(nTransfer);
        settings.nTransfer = nTransfer;
        expectPicture(settings, k_dHalfLevel);
    }
    settings.nDrawFlag = 1;
    expectPicture(settings);
}

} // namespace
