// A geometry renderer in an offscreen context, its GL calls and its messages.
#pragma once

#include "GlRecorder.h"
#include "OffscreenGl.h"
#include "QtMessages.h"
#include "TestEnvironment.h"
#include "d3d11/GeometryRenderer.h"
#include "d3d11/TexturedGeometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace xelttest {

using Calls = std::vector<std::string>;
using Messages = std::vector<QtMessage>;

// A geometry whose layout the test chooses.
class FreeGeometry : public Geometry
{
public:
    int32_t stride() const override { return m_nStride; }
    const QVector<VertexAttribute> &attributes() const override { return m_vecAttributes; }

    int32_t m_nStride = 16;
    QVector<VertexAttribute> m_vecAttributes{{false, GL_FLOAT, 2, 0, {}}, {false, GL_FLOAT, 2, 8, {}}};
};

// The whole viewport with the whole texture.
inline std::unique_ptr<TexturedGeometry> quad()
{
    auto pGeometry = std::make_unique<TexturedGeometry>();
    pGeometry->setTextureRect(QRectF(0, 0, 1, 1), 0);
    pGeometry->create();
    return pGeometry;
}

inline QByteArray indexBytes(const std::vector<uint16_t> &vecIndices)
{
    return QByteArray(reinterpret_cast<const char *>(vecIndices.data()),
                      static_cast<int>(vecIndices.size() * sizeof(uint16_t)));
}

inline std::unique_ptr<TexturedGeometry> indexedQuad(const std::vector<uint16_t> &vecIndices)
{
    auto pGeometry = quad();
    pGeometry->indexCount = static_cast<int32_t>(vecIndices.size());
    pGeometry->indexData = indexBytes(vecIndices);
    return pGeometry;
}

class GeometryRendererTest : public ::testing::Test
{
protected:
    Calls update(std::unique_ptr<Geometry> pGeometry)
    {
        m_recorder.take();
        m_messages.take();
        m_renderer.updateGeometry(std::move(pGeometry));
        return m_recorder.take();
    }

    Calls render()
    {
        m_recorder.take();
        m_renderer.render();
        return m_recorder.take();
    }

    static bool isDesktop() { return glFlavour() == GlFlavour::Desktop; }

    OffscreenGl m_gl;
    QtMessages m_messages;
    GlRecorder m_recorder;
    GeometryRenderer m_renderer;
};

// The calls that feed the quad's two attributes from the address or offset.
inline Calls pointerCalls(uintptr_t nBase = 0)
{
    return {"pointer 0 size 2 type 5126 norm 0 stride 16 at " + std::to_string(nBase), "enable 0",
            "pointer 1 size 2 type 5126 norm 0 stride 16 at " + std::to_string(nBase + 8), "enable 1"};
}

template <typename Item> std::vector<Item> operator+(std::vector<Item> a, const std::vector<Item> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace xelttest
