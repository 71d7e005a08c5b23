// A host that takes ANGLE's own device for its own, as no other test's device is.
#include "HardwarePane.h"

#include "windows/AngleDevice.h"

namespace {

using namespace xelttest;

class InteropAngle : public HardwarePane
{
};

TEST_F(InteropAngle, ItsOwnDeviceIsTheHosts)
{
    open(QSize(96, 64));
    m_device = ComPtr<ID3D11Device>(angleDevice());
    ASSERT_TRUE(m_device);
    uint32_t nSeed = 0;
    for (const QSize &size : {QSize(96, 64), QSize(64, 48), QSize(96, 64)}) {
        for (const UINT nSlice : {0U, 7U, 15U}) {
            const Planes planes = makePlanes(Pattern::Card, size.width(), size.height(), ++nSeed);
            ASSERT_EQ(submitSlice(planes, nSlice), 0);
            EXPECT_TRUE(shows());
        }
    }
    zoom(0.25, 0.25, 0.75, 0.75);
    EXPECT_TRUE(shows());
    // To a device of the host's own and back.
    DecoderTextures other(makeDevice(), QSize(96, 64));
    ASSERT_EQ(submitSlice(other, makePlanes(Pattern::Ramp, 96, 64, ++nSeed)), 0);
    EXPECT_TRUE(shows());
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64, ++nSeed)), 0);
    EXPECT_TRUE(shows());
    EXPECT_EQ(liveObjects(other.device()), 1U) << "the decoder's array";
}

} // namespace
