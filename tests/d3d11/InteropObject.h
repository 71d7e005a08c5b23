// CLS_D3D11EGL by itself, without a pane around it, in a context of its own.
#pragma once

#include "CoreLog.h"
#include "DecoderTextures.h"
#include "OffscreenGl.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "softd3d11/SoftEgl.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>

namespace xelttest {

inline const QSize k_size(64, 48);

// How many references an object has.
template <typename T> ULONG references(const T &pObject)
{
    pObject->AddRef();
    return pObject->Release();
}

class InteropObject : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(softegl::Active());
        softegl::ClearFailures();
        m_device = makeDevice();
        m_textures.emplace(m_device, k_size);
        m_pGl = std::make_unique<OffscreenGl>(k_size);
        m_pEgl = std::make_unique<CLS_D3D11EGL>();
        CoreLog::instance().reset();
        softegl::ResetCallCounts();
        softd3d11::ResetCallCounts();
    }
    void TearDown() override
    {
        if (m_pEgl != nullptr) {
            m_pEgl->DestroyEglResource();
        }
        m_pEgl.reset();
        EXPECT_EQ(QOpenGLContext::currentContext(), &m_pGl->context());
        EXPECT_EQ(m_pGl->gl().glGetError(), GLenum(GL_NO_ERROR));
        m_pGl.reset();
        m_textures.reset();
        EXPECT_EQ(liveObjects(m_device.Get()), 0U);
        EXPECT_EQ(references(m_device), 1U);
        EXPECT_EQ(softegl::LiveSurfaces(), 0U);
        EXPECT_EQ(softegl::BoundTextures(), 0U);
    }

    void setFrame(const Planes &planes, UINT nSlice = 0)
    {
        m_textures->fill(nSlice, planes);
        const VideoFrameDesc desc = m_textures->frame(nSlice);
        m_pEgl->SetFrame(&desc, sizeof desc);
    }
    // A grey frame whose converted value is nGrey, within one.
    void setGrey(int nGrey)
    {
        const auto nLuma = static_cast<uint8_t>(16 + nGrey * 219 / 255);
        setFrame(solidPlanes(k_size.width(), k_size.height(), nLuma, 128, 128));
    }
    int32_t render()
    {
        m_pGl->clear();
        return m_pEgl->Render(QRect(QPoint(0, 0), k_size));
    }
    // Everything that the first pictures need.
    void start()
    {
        ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
        setGrey(100);
        ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
        ASSERT_EQ(render(), 0);
        ASSERT_EQ(render(), 0);
        ASSERT_TRUE(isGrey(100));
    }
    std::array<int, 3> centre() const
    {
        const QRgb rgb = m_pGl->picture().pixel(k_size.width() / 2, k_size.height() / 2);
        return {qRed(rgb), qGreen(rgb), qBlue(rgb)};
    }
    testing::AssertionResult isColour(const std::array<int, 3> &expected, int nSlack = 2) const
    {
        const auto actual = centre();
        for (size_t i = 0; i < 3; ++i) {
            if (std::abs(actual[i] - expected[i]) > nSlack) {
                return testing::AssertionFailure()
                       << actual[0] << ' ' << actual[1] << ' ' << actual[2] << " and not " << expected[0]
                       << ' ' << expected[1] << ' ' << expected[2];
            }
        }
        return testing::AssertionSuccess();
    }
    testing::AssertionResult isGrey(int nGrey) const { return isColour({nGrey, nGrey, nGrey}); }

    ComPtr<ID3D11Device> m_device;
    std::optional<DecoderTextures> m_textures;
    std::unique_ptr<OffscreenGl> m_pGl;
    std::unique_ptr<CLS_D3D11EGL> m_pEgl;
};

} // namespace xelttest
