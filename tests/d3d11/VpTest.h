// A video processor whose members the tests may look at, with what it converts from and into.
#pragma once

#include "CoreLog.h"
#include "DecoderTextures.h"
#include "QtMessages.h"

#include "d3d11/D3D11VP.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace xelttest {

class OpenVp : public dx::D3D11VP
{
public:
    using dx::D3D11VP::D3D11VP;
    using dx::D3D11VP::m_enum;
    using dx::D3D11VP::m_height;
    using dx::D3D11VP::m_out;
    using dx::D3D11VP::m_outview;
    using dx::D3D11VP::m_sourceRect;
    using dx::D3D11VP::m_viddev;
    using dx::D3D11VP::m_vp;
    using dx::D3D11VP::m_width;
};

class VpTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(CoreLog::instance().isPresent());
        CoreLog::instance().reset();
        softd3d11::ClearFailures();
        m_device = makeDevice();
        makeVp();
        use(QSize(64, 48));
        m_messages.take();
    }
    void TearDown() override
    {
        softd3d11::ClearFailures();
        m_vp.reset();
        m_textures.reset();
        m_target.Reset();
        EXPECT_EQ(liveObjects(m_device.Get()), 0U);
        EXPECT_EQ(m_device->AddRef(), 2U);
        EXPECT_EQ(m_device->Release(), 1U);
    }

    void makeVp() { m_vp = std::make_unique<OpenVp>(m_device); }
    // Input and output of the size from now on.
    void use(const QSize &size)
    {
        m_textures.emplace(m_device, size);
        m_textures->fill(0, makePlanes(Pattern::Noise, size.width(), size.height()));
        m_target = makeTarget(*m_device.Get(), size);
        m_vp->setOutputTexture(m_target.Get());
        softd3d11::ResetCallCounts();
    }
    bool process(UINT nSlice = 0) { return m_vp->process(m_textures->texture(), nSlice); }
    std::vector<uint8_t> pixels() { return readTarget(*m_device.Get(), *m_target.Get()); }

    ComPtr<ID3D11Device> m_device;
    std::optional<DecoderTextures> m_textures;
    ComPtr<ID3D11Texture2D> m_target;
    std::unique_ptr<OpenVp> m_vp;
    QtMessages m_messages;
};

// Enumerators, processors, output views and input views made, and blits done, since the counts were reset.
struct VpCalls
{
    uint64_t nEnumerators;
    uint64_t nFormatChecks;
    uint64_t nProcessors;
    uint64_t nOutputViews;
    uint64_t nInputViews;
    uint64_t nBlits;

    static VpCalls now()
    {
        using softd3d11::CallCount;
        using softd3d11::Method;
        return {CallCount(Method::VideoDeviceCreateVideoProcessorEnumerator),
                CallCount(Method::EnumeratorCheckVideoProcessorFormat),
                CallCount(Method::VideoDeviceCreateVideoProcessor),
                CallCount(Method::VideoDeviceCreateVideoProcessorOutputView),
                CallCount(Method::VideoDeviceCreateVideoProcessorInputView),
                CallCount(Method::VideoContextVideoProcessorBlt)};
    }
};

inline bool operator==(const VpCalls &a, const VpCalls &b)
{
    return a.nEnumerators == b.nEnumerators && a.nFormatChecks == b.nFormatChecks &&
           a.nProcessors == b.nProcessors && a.nOutputViews == b.nOutputViews &&
           a.nInputViews == b.nInputViews && a.nBlits == b.nBlits;
}

inline void PrintTo(const VpCalls &calls, std::ostream *pStream)
{
    *pStream << calls.nEnumerators << " enumerators, " << calls.nFormatChecks << " checks, "
             << calls.nProcessors << " processors, " << calls.nOutputViews << " output views, "
             << calls.nInputViews << " input views, " << calls.nBlits << " blits";
}

} // namespace xelttest
