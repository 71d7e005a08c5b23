#pragma once

#include "d3d11/Geometry.h"

#include <QRectF>

// A rectangle of four vertices: one position, then one texture coordinate for each texture, as pairs of
// floats. create() fills in the vertices; the setters take effect with the next create().
class TexturedGeometry : public Geometry
{
public:
    TexturedGeometry();

    int32_t stride() const override;
    const QVector<VertexAttribute> &attributes() const override;
    virtual void create();

    // A negative count is ignored.
    void setTextureCount(int32_t nCount);
    // Clip space; the top-left corner of the default is (-1, 1), the bottom-right one (1, -1).
    void setRect(const QRectF &rect);
    // Rectangles beyond the texture count are kept but have no place in a vertex. A negative index is
    // ignored.
    void setTextureRect(const QRectF &rect, int32_t nIndex);

private:
    void writeCorners(const QRectF &rect, int32_t nOffset);

    int32_t m_nTextureCount = 0;
    QRectF m_rect{-1.0, 1.0, 2.0, -2.0};
    QVector<QRectF> m_vecTextureRects;
    QVector<VertexAttribute> m_vecAttributes;
};
