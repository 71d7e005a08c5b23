// Test pictures on the CPU and as textures.
#pragma once

#include <QOpenGLFunctions>

#include <cstdint>
#include <vector>

namespace xelttest {

// Bytes of a picture, channels interleaved, the row that GL has first comes first.
struct Plane
{
    int nWidth = 0;
    int nHeight = 0;
    int nChannels = 1;
    std::vector<uint8_t> aBytes;

    // 0..1, as GL gives it; beyond the edge, the edge.
    double at(int x, int y, int nChannel = 0) const;
};

// Deterministic.
Plane noise(int nWidth, int nHeight, int nChannels, uint32_t nSeed);

// Desktop OpenGL alone has rectangle textures.
enum class TextureKind { Ordinary, Rectangle };

// A texture of 1, 2 or 4 channels with nearest filter, clamped to the edge. Made, used and destroyed with the
// same context current. (QOpenGLTexture's upload leaves a GL error behind on OpenGL ES.)
class PlaneTexture
{
public:
    PlaneTexture(QOpenGLFunctions &gl, const Plane &plane, TextureKind kind = TextureKind::Ordinary);
    ~PlaneTexture();
    PlaneTexture(const PlaneTexture &) = delete;
    PlaneTexture &operator=(const PlaneTexture &) = delete;

    void bind(int nUnit);

private:
    QOpenGLFunctions &m_gl;
    GLenum m_nTarget;
    GLuint m_nTexture = 0;
};

} // namespace xelttest
