#include "HardwarePane.h"

#include <algorithm>
#include <utility>

namespace xelttest {

void HardwarePane::SetUp()
{
    PaneTest::SetUp();
    ASSERT_TRUE(softegl::Active()) << "the test program found another EGL library first";
    softd3d11::ClearFailures();
    softegl::ClearFailures();
    softegl::HideExtension(false);
    softd3d11::ResetCallCounts();
    softegl::ResetCallCounts();
    m_nObjectsBefore = liveObjects();
    m_nSurfacesBefore = softegl::LiveSurfaces();
}

void HardwarePane::TearDown()
{
    softd3d11::ClearFailures();
    softegl::ClearFailures();
    softegl::HideExtension(false);
    PaneTest::TearDown();
    drainEvents();
    m_textures.reset();
    m_device.Reset();
    EXPECT_EQ(liveObjects(), m_nObjectsBefore);
    EXPECT_EQ(surfaces(), m_nLostSurfaces);
    EXPECT_EQ(softegl::BoundTextures(), 0U);
}

size_t HardwarePane::texturesHeldByEgl() const
{
#ifdef _WIN32
    return surfaces();
#else
    return 0; // it holds the pixels and not the object
#endif
}

DecoderTextures &HardwarePane::textures(const QSize &size)
{
    if (!m_device) {
        m_device = makeDevice();
    }
    if (!m_textures.has_value() || m_textures->size() != size || m_textures->device() != m_device.Get()) {
        m_textures.emplace(m_device, size);
    }
    return *m_textures;
}

void HardwarePane::setDevice(ID3D11Device *pDevice)
{
    ASSERT_EQ(Xelt_SetParam(handle(), XELTCMD_SET_D3D11_DEVICE, &pDevice, sizeof pDevice), 0);
    m_pDeviceOfPane = pDevice;
}

int32_t HardwarePane::submitSlice(const Planes &planes, UINT nSlice)
{
    return submitSlice(textures(QSize(planes.nWidth, planes.nHeight)), planes, nSlice);
}

int32_t HardwarePane::submitSlice(DecoderTextures &textures, const Planes &planes, UINT nSlice)
{
    textures.fill(nSlice, planes);
    if (m_pDeviceOfPane != textures.device()) {
        setDevice(textures.device());
    }
    expectSlice(planes, textures, nSlice);
    const VideoFrameDesc desc = textures.frame(nSlice);
    return Xelt_ShowYuvFrame(handle(), &desc, sizeof desc);
}

void HardwarePane::expectSlice(const Planes &planes)
{
    expectConverted(planes, convertedFrame(planes));
}

void HardwarePane::expectSlice(const Planes &planes, const DecoderTextures &textures, UINT nSlice)
{
    expectConverted(planes, convertedSlice(textures, nSlice, QSize(planes.nWidth, planes.nHeight)));
}

void HardwarePane::expectConverted(const Planes &planes, std::vector<uint8_t> aConverted)
{
    m_planes = planes;
    m_model.aConverted = std::move(aConverted);
    m_model.nType = VIDEO_DISPLAY_DXGL;
    m_model.blSlice = true;
    m_model.nWidth = planes.nWidth;
    m_model.nHeight = planes.nHeight;
    m_model.aBytes = packedNv12Bytes(planes);
}

::testing::AssertionResult HardwarePane::shows(const std::string &sName)
{
    paint();
    return imageMatches(paint(), hardwareReference(), k_converted, QString::fromStdString(sName));
}

View HardwarePane::hardwareView() const
{
    View view = m_view;
    if (rendererType() == 7) { // neither turns nor places
        view.area = {0.0, 0.0, 1.0, 1.0};
        view.nAngle = 0;
        view.nMirror = 0;
    } else if (view.nAngle == 270) {
        view.nDirection = view.nMirror; // the hardware path's own rule
    }
    return view;
}

// What the processor would make of the expected frame if these faults in its colours were its own.
std::vector<uint8_t> HardwarePane::convertedWith(const Faults &faults) const
{
    Planes planes = m_planes;
    if (faults.blSwapChroma) {
        std::swap(planes.aU, planes.aV);
    }
    for (uint8_t &nLuma : planes.aY) {
        nLuma = static_cast<uint8_t>(std::clamp(nLuma + faults.dBlackLevel * 219, 0.0, 255.0));
    }
    return convertedFrame(planes, faults.blOtherMatrix);
}

ReferenceImage HardwarePane::hardwareReference(const Faults &faults) const
{
    View view = hardwareView();
    view.faults = faults;
    BufferModel model = m_model;
    if (!model.aConverted.empty() &&
        (faults.blSwapChroma || faults.blOtherMatrix || faults.dBlackLevel != 0.0)) {
        model.aConverted = convertedWith(faults);
    }
    ReferenceImage image = renderPicture(model, view);
    addOverlays(image);
    return image;
}

void HardwarePane::addOverlays(ReferenceImage &image) const
{
    std::vector<XeltDrawInfo> vecRecords = m_overlays.vecRecords;
    if (rendererType() == 7) { // everything opaque
        for (XeltDrawInfo &record : vecRecords) {
            record.fOpacity = 0.0f;
        }
    }
    if (!vecRecords.empty()) {
        renderOverlays(image, hardwareView(), vecRecords, glFlavour());
    }
}

ReferenceImage HardwarePane::overlaysOnBlack() const
{
    ReferenceImage image = renderPicture({}, hardwareView());
    addOverlays(image);
    return image;
}

} // namespace xelttest
