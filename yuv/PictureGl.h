// GL pieces that both renderers are made of. Painting thread, the widget's context current.
#pragma once

#include "widget/DisplayGeometry.h"

#include <QOpenGLExtraFunctions>
#include <memory>
#include <vector>

class CLS_D3D11EGL;
class QOpenGLShaderProgram;
class QOpenGLTexture;

namespace yuv {

// A program with "vertexIn" at attribute 0 and "textureIn" at 1, bound. Compile and link failures are not
// detected: such a program draws nothing.
std::unique_ptr<QOpenGLShaderProgram> BuildProgram(const char *pszVertexShader,
                                                   const char *pszFragmentShader);

// Feeds attribute 1 with the quad's texture coordinates. Texture row 0 is the picture's top row.
void UseTextureCoordinates(QOpenGLExtraFunctions &gl);
// Feeds attribute 0; afPositions must stay until the draw.
void UsePositions(QOpenGLExtraFunctions &gl, const geometry::QuadVertices &afPositions);

// A texture object without a GL name, or null without memory.
std::unique_ptr<QOpenGLTexture> NewTexture();
// Gives it its name, which is returned.
GLuint CreateTexture(QOpenGLTexture &texture);
void DestroyTexture(std::unique_ptr<QOpenGLTexture> &pTexture);
// The largest width and height of a texture in the current context.
GLint MaxTextureSize(QOpenGLExtraFunctions &gl);
// Linear filters and clamped edges for the texture that is bound.
void SetPlaneSampling(QOpenGLExtraFunctions &gl);

// Logs what the context says of itself, each line headed by the renderer's class.
void LogGlStrings(QOpenGLExtraFunctions &gl, const char *pszClass);

// GL objects that a host thread has taken out of use. They wait here, guarded by the frame mutex, for the
// painting thread, the only one that may destroy them.
class RetiredObjects
{
public:
    RetiredObjects();
    ~RetiredObjects();

    // Any thread. Null is ignored. A hardware path without GL objects is destroyed at once; of another one
    // only these wait, so that a pane that nobody paints holds nothing of the host's.
    // What there is no memory to keep stays with the caller, and std::bad_alloc is thrown.
    void Add(std::unique_ptr<QOpenGLShaderProgram> &pProgram);
    void Add(std::unique_ptr<QOpenGLTexture> &pTexture);
    void Add(std::unique_ptr<CLS_D3D11EGL> &pD3D11EGL);

    // Painting thread, the context current that the objects belong to.
    void DestroyAll();

private:
    std::vector<std::unique_ptr<QOpenGLShaderProgram>> m_vecPrograms;
    std::vector<std::unique_ptr<QOpenGLTexture>> m_vecTextures;
    std::vector<std::unique_ptr<CLS_D3D11EGL>> m_vecD3D11EGL;
};

} // namespace yuv
