#include "d3d11/Geometry.h"

bool operator==(const VertexAttribute &a, const VertexAttribute &b)
{
    return a.tupleSize == b.tupleSize && a.offset == b.offset && a.type == b.type &&
           a.normalize == b.normalize;
}

Geometry::~Geometry() = default;

int32_t Geometry::indexDataSize() const
{
    switch (indexType) {
    case GL_UNSIGNED_SHORT:
        return indexCount * 2;
    case GL_UNSIGNED_INT:
        return indexCount * 4;
    default:
        return indexCount;
    }
}
