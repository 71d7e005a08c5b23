#pragma once

#include "d3d11/Geometry.h"

#include <QOpenGLBuffer>
#include <QOpenGLVertexArrayObject>
#include <cstdint>
#include <memory>

class QOpenGLFunctions;

// Uploads a geometry into buffers and a vertex array object, where they are to be had, and draws it.
// Painting thread; the context current that the objects belong to, unless said otherwise.
class GeometryRenderer
{
public:
    enum Feature : uint32_t {
        UseVertexBuffer = 0x1,
        UseIndexBuffer = 0x2,
        UseVertexArray = 0x4,
        MapBuffers = 0x10000,
    };

    GeometryRenderer();
    ~GeometryRenderer();
    GeometryRenderer(const GeometryRenderer &) = delete;
    GeometryRenderer &operator=(const GeometryRenderer &) = delete;

    // Bits of Feature; all by default. What exists already stays. Any context.
    void setFeatures(uint32_t nFeatures) { m_nFeatures = nFeatures; }
    uint32_t features() const { return m_nFeatures; }

    // Takes the geometry over and brings buffers and layout up to date. Null destroys them.
    void updateGeometry(std::unique_ptr<Geometry> pGeometry);
    // Draws the geometry with the program that is bound; nothing without a geometry.
    void render();
    // Destroys buffers, vertex array object and geometry. The layout stays known, so that the next update, in
    // another context too, makes the buffers again and the vertex array object not.
    void destroy();
    // Whether there are buffers or a vertex array object. Any context.
    bool holdsObjects() const { return m_vbo.isCreated() || m_ibo.isCreated() || hasVao(); }

    // Null before the first update, after one with null and after destroy().
    const Geometry *geometry() const { return m_pGeometry.get(); }
    // Whether the owner has to build and upload a geometry before the next draw. Any context.
    bool needsUpdate() const { return m_blGeometryDirty || m_pGeometry == nullptr; }
    // The owner's geometry is out of date. Any context.
    void markDirty() { m_blGeometryDirty = true; }

private:
    void updateIndexBuffer();
    void updateVertexBuffer();
    void updateLayout();
    bool hasVao() const { return m_pVao != nullptr && m_pVao->isCreated(); }
    bool writeMapped(QOpenGLBuffer &buffer, const char *pBytes, int32_t nSize);
    void setAttributePointers(QOpenGLFunctions &gl, const char *pBase) const;
    void bind(QOpenGLFunctions &gl);
    void draw(QOpenGLFunctions &gl) const;
    void unbind(QOpenGLFunctions &gl);

    int32_t m_nVboSize = 0;
    int32_t m_nIboSize = 0;
    QOpenGLBuffer m_vbo{QOpenGLBuffer::VertexBuffer};
    // Made anew each time: Qt leaks where one object is created twice.
    std::unique_ptr<QOpenGLVertexArrayObject> m_pVao;
    QOpenGLBuffer m_ibo{QOpenGLBuffer::IndexBuffer};
    int32_t m_nLastStride = 0; // the layout that was bound into the vertex array object last
    QVector<VertexAttribute> m_vecLastAttributes;
    uint32_t m_nFeatures = UseVertexBuffer | UseIndexBuffer | UseVertexArray | MapBuffers;
    std::unique_ptr<Geometry> m_pGeometry;
    bool m_blGeometryDirty = true;
};
