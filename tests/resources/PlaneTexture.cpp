#include "PlaneTexture.h"

#include <algorithm>

#ifndef GL_TEXTURE_RECTANGLE
#define GL_TEXTURE_RECTANGLE 0x84F5
#endif
#ifndef GL_RED
#define GL_RED 0x1903
#endif
#ifndef GL_RG
#define GL_RG 0x8227
#endif

namespace xelttest {

double Plane::at(int x, int y, int nChannel) const
{
    const int nColumn = std::clamp(x, 0, nWidth - 1);
    const int nRow = std::clamp(y, 0, nHeight - 1);
    return aBytes[static_cast<size_t>((nRow * nWidth + nColumn) * nChannels + nChannel)] / 255.0;
}

Plane noise(int nWidth, int nHeight, int nChannels, uint32_t nSeed)
{
    Plane plane{nWidth, nHeight, nChannels, {}};
    for (int i = 0; i < nWidth * nHeight * nChannels; ++i) {
        nSeed = nSeed * 1664525U + 1013904223U;
        plane.aBytes.push_back(static_cast<uint8_t>(nSeed >> 24U));
    }
    return plane;
}

PlaneTexture::PlaneTexture(QOpenGLFunctions &gl, const Plane &plane, TextureKind kind)
    : m_gl(gl), m_nTarget(kind == TextureKind::Rectangle ? GL_TEXTURE_RECTANGLE : GL_TEXTURE_2D)
{
    m_gl.glGenTextures(1, &m_nTexture);
    m_gl.glBindTexture(m_nTarget, m_nTexture);
    m_gl.glTexParameteri(m_nTarget, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    m_gl.glTexParameteri(m_nTarget, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    m_gl.glTexParameteri(m_nTarget, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    m_gl.glTexParameteri(m_nTarget, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    m_gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const GLenum nFormat = plane.nChannels == 1 ? GL_RED : plane.nChannels == 2 ? GL_RG : GL_RGBA;
    m_gl.glTexImage2D(m_nTarget, 0, static_cast<GLint>(nFormat), plane.nWidth, plane.nHeight, 0, nFormat,
                      GL_UNSIGNED_BYTE, plane.aBytes.data());
}

PlaneTexture::~PlaneTexture()
{
    m_gl.glDeleteTextures(1, &m_nTexture);
}

void PlaneTexture::bind(int nUnit)
{
    m_gl.glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + nUnit));
    m_gl.glBindTexture(m_nTarget, m_nTexture);
}

} // namespace xelttest
