#include "d3d11/TexturedGeometry.h"

#include <array>
#include <cstring>

namespace {

constexpr int32_t kPairSize = 2 * sizeof(float);

} // namespace

TexturedGeometry::TexturedGeometry()
{
    primitive = GL_TRIANGLE_STRIP;
    vertexCount = 4;
    m_vecAttributes = {{false, GL_FLOAT, 2, 0, {}}, {false, GL_FLOAT, 2, kPairSize, {}}};
    setTextureCount(1);
}

int32_t TexturedGeometry::stride() const
{
    return (m_nTextureCount + 1) * kPairSize;
}

const QVector<VertexAttribute> &TexturedGeometry::attributes() const
{
    return m_vecAttributes;
}

void TexturedGeometry::setTextureCount(int32_t nCount)
{
    if (nCount < 0 || nCount == m_nTextureCount) {
        return;
    }
    m_vecTextureRects.resize(nCount);
    m_nTextureCount = nCount;
}

void TexturedGeometry::setRect(const QRectF &rect)
{
    m_rect = rect;
}

void TexturedGeometry::setTextureRect(const QRectF &rect, int32_t nIndex)
{
    if (nIndex < 0) {
        return;
    }
    if (m_vecTextureRects.size() <= nIndex) {
        m_vecTextureRects.resize(nIndex + 1);
    }
    m_vecTextureRects[nIndex] = rect;
}

void TexturedGeometry::create()
{
    indexCount = 0;
    vertexData.resize(vertexCount * stride());
    vertexData.fill('\0');
    indexData.clear();

    while (m_vecAttributes.size() < m_nTextureCount + 1) {
        m_vecAttributes.append({false, GL_FLOAT, 2, kPairSize * m_vecAttributes.size(), {}});
    }
    m_vecAttributes.resize(m_nTextureCount + 1);

    writeCorners(m_rect, 0);
    for (int32_t i = 0; i < m_nTextureCount; ++i) {
        writeCorners(m_vecTextureRects.at(i), kPairSize * (i + 1));
    }
}

void TexturedGeometry::writeCorners(const QRectF &rect, int32_t nOffset)
{
    std::array<QPointF, 4> aCorners{rect.topLeft(), rect.bottomLeft()};
    int32_t nCorners = 4;
    if (primitive == GL_TRIANGLE_STRIP) {
        aCorners[2] = rect.topRight();
        aCorners[3] = rect.bottomRight();
    } else if (primitive == GL_TRIANGLE_FAN) {
        aCorners[2] = rect.bottomRight();
        aCorners[3] = rect.topRight();
    } else {
        nCorners = 2; // deliberate: other primitives leave the rest zero
    }
    for (int32_t i = 0; i < nCorners && i < vertexCount; ++i) {
        const QPointF &corner = aCorners[static_cast<size_t>(i)];
        const float afPair[2] = {static_cast<float>(corner.x()), static_cast<float>(corner.y())};
        std::memcpy(vertexData.data() + static_cast<ptrdiff_t>(i) * stride() + nOffset, afPair,
                    sizeof afPair);
    }
}
