#pragma once

#include "d3d11/RgbShaderSources.h"

#include <QMatrix4x4>
#include <QOpenGLContextGroup>
#include <QOpenGLShaderProgram>
#include <QPointer>
#include <QVector>
#include <cstdint>
#include <memory>

class ColorMatrix;
struct LogPosition;

namespace rgb {

// -1 where the program has no such uniform.
struct UniformLocations
{
    int32_t nMatrix = -1;
    int32_t nColorMatrix = -1;
    int32_t nTo8 = -1;
    int32_t nOpacity = -1;
    int32_t nChannels = -1; // u_c
    int32_t nTexelSize = -1;
    int32_t nTextureSize = -1;
    int32_t nDrawFlag = -1;
    int32_t nDrawColor = -1;
    int32_t nDrawAlpha = -1;
};

// The longest edge that a texture may have in the current context. Painting thread.
int32_t MaxTextureSize();

// Whether a context with this longest edge can be asked for such a texture. Drivers are known to end the process
// over sizes far beyond it, so what comes from a host is asked about first. Any thread.
constexpr bool IsTextureSize(int32_t nWidth, int32_t nHeight, int32_t nMax)
{
    return nWidth >= 0 && nHeight >= 0 && nWidth <= nMax && nHeight <= nMax;
}

} // namespace rgb

// The program that draws the converted picture, and the texture that the picture's surface is bound to.
// Painting thread; the widget's context current, unless said otherwise.
class RgbProgram
{
public:
    // pOwner is only named in log lines. The texts must outlive the object. Any context.
    explicit RgbProgram(const void *pOwner, const char *pszVertexShader = rgb::kVertexShader,
                        const char *pszFragmentShader = rgb::kFragmentShader);
    ~RgbProgram();
    RgbProgram(const RgbProgram &) = delete;
    RgbProgram &operator=(const RgbProgram &) = delete;

    // Builds the program and leaves it bound. 0, also when it exists already; -1 when it cannot be linked or
    // bound, and then it stays as it is. Its error records name the caller's position.
    int32_t CreateGlslResource(const LogPosition &position);
    // Makes the texture, with storage of the given size (which may be 0 x 0), or without where the context has no
    // such textures. Always 0. Its error records name the caller's position.
    int32_t BindEglTextures(const LogPosition &position, int32_t nWidth, int32_t nHeight);

    // False without a program that can be bound.
    bool Bind();
    // Takes no program into use.
    void Release();
    // Updates the colour matrix and loads the uniforms that stay as long as it is valid. The program is
    // bound.
    void LoadColorUniforms(ColorMatrix &colorMatrix);
    void SetMatrix(const QMatrix4x4 &matrix);
    void SetDrawFlag(int32_t nFlag);

    // Releases and deletes the program; locations and texture stay.
    void DestroyProgram();
    // Deletes the texture where its context is the current one or shares with it; the destructor does so too.
    void DestroyTextures();

    // Null before CreateGlslResource() and after DestroyProgram(). Any context.
    QOpenGLShaderProgram *Program() const { return m_pProgram.get(); }
    const rgb::UniformLocations &Locations() const { return m_locations; }
    const QVector<int32_t> &SamplerLocations() const { return m_vecSamplers; }
    // Name of the texture at GL_TEXTURE_2D; 0 before BindEglTextures() and after DestroyTextures().
    uint32_t Texture() const { return m_vecTextures.isEmpty() ? 0 : m_vecTextures.first(); }

private:
    void LookUpUniforms();
    void LookUpSamplers();
    void LogLocations() const;
    void NewTextureName();

    const void *m_pOwner;
    const char *m_pszVertexShader;
    const char *m_pszFragmentShader;
    std::unique_ptr<QOpenGLShaderProgram> m_pProgram;
    rgb::UniformLocations m_locations;
    QVector<int32_t> m_vecSamplers;
    uint32_t m_nInternalFormat = 0;
    uint32_t m_nFormat = 0;
    uint32_t m_nDataType = 0;
    QMatrix4x4 m_channels;
    QVector<uint32_t> m_vecTextures;
    QPointer<QOpenGLContextGroup> m_pTextureGroup; // the contexts in which the texture's name is known
};
