// The tolerances of these tests are small enough: each mistake that a renderer might make is noticed by them.
#include "PaneTest.h"

#include <functional>

namespace xelttest {
namespace {

enum class Format { Yv12, Nv12 };

class FaultTest : public PaneTest, public ::testing::WithParamInterface<Format>
{
protected:
    HostFrame frame(const Planes &planes) const
    {
        return GetParam() == Format::Yv12 ? yv12Frame(planes) : nv12Frame(planes);
    }

    void expectNoticed(const Faults &faults, const Tolerance &tolerance)
    {
        EXPECT_TRUE(matches(tolerance));
        EXPECT_TRUE(imageDiffers(picture(), faultyReference(faults), tolerance));
    }

    // The picture that the scaled tolerance is used with.
    void openScaled()
    {
        open(QSize(161, 117));
        submit(frame(makePlanes(Pattern::Bars, 64, 64)));
    }

    void openFlat()
    {
        open(QSize(50, 50));
        submit(frame(solidPlanes(16, 16, 150, 100, 90)));
    }
};

TEST_P(FaultTest, NoticesTheOtherFormatsCoefficients)
{
    Faults faults;
    faults.blOtherMatrix = true;
    openScaled();
    expectNoticed(faults, k_scaled);
}

// The coefficients of neighbouring standards differ by half a hundredth. A single colour may round it away, a
// few of them do not.
TEST_P(FaultTest, NoticesACoefficientThatIsSlightlyOff)
{
    open(QSize(50, 50));
    for (const double dOff : {-0.0055, 0.0055}) {
        Faults faults;
        faults.dCoefficientOff = dOff;
        int nNoticed = 0;
        for (int nV = 2; nV < 44; ++nV) {
            submit(frame(solidPlanes(16, 16, 200, 90, uint8_t(nV))));
            EXPECT_TRUE(matches(k_flat));
            nNoticed += imageDiffers(picture(), faultyReference(faults), k_flat) ? 1 : 0;
        }
        EXPECT_GE(nNoticed, 3) << dOff;
    }
}

TEST_P(FaultTest, NoticesAWrongBlackLevel)
{
    Faults faults;
    faults.dBlackLevel = 1.0 / 128;
    openFlat();
    expectNoticed(faults, k_flat);
}

TEST_P(FaultTest, NoticesAMissingBlackLevelInScaledPictures)
{
    Faults faults;
    faults.dBlackLevel = 0.0625;
    openScaled();
    expectNoticed(faults, k_scaled);
}

TEST_P(FaultTest, NoticesSwappedChroma)
{
    Faults faults;
    faults.blSwapChroma = true;
    openScaled();
    expectNoticed(faults, k_scaled);
}

TEST_P(FaultTest, NoticesAHalfPixelShiftOfAScaledPicture)
{
    openScaled();
    for (const double dShift : {-0.5, 0.5}) {
        Faults across;
        across.dShiftX = dShift;
        expectNoticed(across, k_scaled);
        Faults down;
        down.dShiftY = dShift;
        expectNoticed(down, k_scaled);
    }
}

TEST_P(FaultTest, NoticesAHalfPixelShiftAtItsOwnSize)
{
    open(QSize(64, 64));
    submit(frame(makePlanes(Pattern::Noise, 64, 64)));
    Faults faults;
    faults.dShiftX = 0.5;
    expectNoticed(faults, ownSizeTolerance());
}

TEST_P(FaultTest, NoticesMissingInterpolation)
{
    Faults faults;
    faults.blNearest = true;
    openScaled();
    expectNoticed(faults, k_scaled);
}

TEST_P(FaultTest, NoticesATurnTheOtherWay)
{
    openScaled();
    turnPicture(90, 0, 0);
    Faults faults;
    faults.blTurnOtherWay = true;
    expectNoticed(faults, k_scaled);
}

TEST_P(FaultTest, NoticesMirroringBeforeTurning)
{
    openScaled();
    turnPicture(90, 1, 1);
    Faults faults;
    faults.blMirrorBeforeTurn = true;
    expectNoticed(faults, k_scaled);
}

INSTANTIATE_TEST_SUITE_P(Formats, FaultTest, ::testing::Values(Format::Yv12, Format::Nv12),
                         [](const auto &test) { return test.param == Format::Yv12 ? "Yv12" : "Nv12"; });

} // namespace
} // namespace xelttest
