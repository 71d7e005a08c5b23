// Vertex data of one draw call.
#pragma once

#include <QByteArray>
#include <QVector>
#include <cstdint>
#include <qopengl.h>

// One attribute of an interleaved vertex. Its index is its place in the layout, so the name is a label only.
struct VertexAttribute
{
    bool normalize = false;
    int32_t type = 0;      // GL enumerant of the components
    int32_t tupleSize = 0; // components
    int32_t offset = 0;    // bytes from the vertex's begin
    QByteArray name;
};

// Whether GL reads both the same way; names do not count.
bool operator==(const VertexAttribute &a, const VertexAttribute &b);

class Geometry
{
public:
    Geometry() = default;
    virtual ~Geometry();
    // Bytes of one vertex.
    virtual int32_t stride() const = 0;
    virtual const QVector<VertexAttribute> &attributes() const = 0;

    // Bytes that indexCount indices take.
    int32_t indexDataSize() const;

    int32_t primitive = GL_TRIANGLE_STRIP; // draw mode
    int32_t indexType = GL_UNSIGNED_SHORT;
    int32_t vertexCount = 0;
    int32_t indexCount = 0; // 0: the draw uses no indices
    QByteArray vertexData;  // stride() bytes for each vertex
    QByteArray indexData;   // indexDataSize() bytes

protected:
    Geometry(const Geometry &) = default;
    Geometry &operator=(const Geometry &) = default;
};
