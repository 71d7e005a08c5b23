// A pane that is shown Direct3D 11 frames, and the picture that it has to show.
#pragma once

#include "DecoderTextures.h"
#include "PaneTest.h"
#include "Processor.h"
#include "QtMessages.h"

#include "softd3d11/SoftEgl.h"

#include <optional>

namespace xelttest {

// What a test leaves behind counts as a failure: device objects, surfaces, bound textures.
class HardwarePane : public PaneTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    // A device with a texture array for frames of the size.
    DecoderTextures &textures(const QSize &size);
    void setDevice(ID3D11Device *pDevice);
    // Fills the slice and submits it, with its device where the pane has another one. The call's result.
    int32_t submitSlice(const Planes &planes, UINT nSlice = 0);
    int32_t submitSlice(DecoderTextures &textures, const Planes &planes, UINT nSlice = 0);
    // What the model says of the slice, without a submission. It lies at the top left of a slice of the array,
    // or in one of its own.
    void expectSlice(const Planes &planes);
    void expectSlice(const Planes &planes, const DecoderTextures &textures, UINT nSlice);

    // Surfaces that were made in this test and are there still.
    size_t surfaces() const { return softegl::LiveSurfaces() - m_nSurfacesBefore; }
    // Textures of the device that EGL holds for its surfaces.
    size_t texturesHeldByEgl() const;
    // One paint, now, and what it left.
    QImage paint() { return grab(handle()); }
    // Converts and shows.
    ::testing::AssertionResult shows(const std::string &sName = {});
    // The pane's picture as its hardware path places and turns it.
    ReferenceImage hardwareReference(const Faults &faults = {}) const;
    // Nothing but the overlays.
    ReferenceImage overlaysOnBlack() const;

    ComPtr<ID3D11Device> m_device;
    std::optional<DecoderTextures> m_textures;
    size_t m_nLostSurfaces = 0; // that the test's failing calls could not but leave behind

private:
    void expectConverted(const Planes &planes, std::vector<uint8_t> aConverted);
    std::vector<uint8_t> convertedWith(const Faults &faults) const;
    View hardwareView() const;
    void addOverlays(ReferenceImage &image) const;

    Planes m_planes; // of the frame that is expected
    ID3D11Device *m_pDeviceOfPane = nullptr;
    size_t m_nObjectsBefore = 0;
    size_t m_nSurfacesBefore = 0;
};

// A picture that is filtered at most once, from converted pixels.
constexpr Tolerance k_converted{2.75, 0.55, 0.05};

} // namespace xelttest
