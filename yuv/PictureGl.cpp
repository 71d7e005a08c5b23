#include "yuv/PictureGl.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "yuv/HardwarePath.h"

#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <new>
#include <utility>

namespace yuv {

namespace {

constexpr GLuint kPositionAttribute = 0;
constexpr GLuint kTextureAttribute = 1;

// One pair for each corner: bottom-left, bottom-right, top-left, top-right.
constexpr GLfloat kTextureCoordinates[8] = {0, 1, 1, 1, 0, 0, 1, 0};

const char *GlString(QOpenGLExtraFunctions &gl, GLenum nName)
{
    const auto *pszValue = reinterpret_cast<const char *>(gl.glGetString(nName));
    return pszValue != nullptr ? pszValue : "";
}

// Either moves the object or, without memory, leaves it where it is.
template <class Object>
void MoveInto(std::vector<std::unique_ptr<Object>> &vecObjects, std::unique_ptr<Object> &pObject)
{
    if (pObject != nullptr) {
        vecObjects.push_back(nullptr);
        vecObjects.back() = std::move(pObject);
    }
}

} // namespace

std::unique_ptr<QOpenGLShaderProgram> BuildProgram(const char *pszVertexShader, const char *pszFragmentShader)
{
    auto pProgram = std::make_unique<QOpenGLShaderProgram>();
    pProgram->addShaderFromSourceCode(QOpenGLShader::Vertex, pszVertexShader);
    pProgram->addShaderFromSourceCode(QOpenGLShader::Fragment, pszFragmentShader);
    pProgram->bindAttributeLocation("vertexIn", kPositionAttribute);
    pProgram->bindAttributeLocation("textureIn", kTextureAttribute);
    pProgram->link();
    pProgram->bind();
    return pProgram;
}

void UseTextureCoordinates(QOpenGLExtraFunctions &gl)
{
    gl.glVertexAttribPointer(kTextureAttribute, 2, GL_FLOAT, GL_FALSE, 0, kTextureCoordinates);
    gl.glEnableVertexAttribArray(kTextureAttribute);
}

void UsePositions(QOpenGLExtraFunctions &gl, const geometry::QuadVertices &afPositions)
{
    gl.glVertexAttribPointer(kPositionAttribute, 2, GL_FLOAT, GL_FALSE, 0, afPositions);
    gl.glEnableVertexAttribArray(kPositionAttribute);
}

std::unique_ptr<QOpenGLTexture> NewTexture()
{
    try {
        return std::unique_ptr<QOpenGLTexture>(new (std::nothrow) QOpenGLTexture(QOpenGLTexture::Target2D));
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

GLuint CreateTexture(QOpenGLTexture &texture)
{
    texture.create();
    return texture.textureId();
}

void DestroyTexture(std::unique_ptr<QOpenGLTexture> &pTexture)
{
    if (pTexture != nullptr) {
        pTexture->destroy();
        pTexture.reset();
    }
}

GLint MaxTextureSize(QOpenGLExtraFunctions &gl)
{
    GLint nSize = 0;
    gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nSize);
    return nSize;
}

void SetPlaneSampling(QOpenGLExtraFunctions &gl)
{
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void LogGlStrings(QOpenGLExtraFunctions &gl, const char *pszClass)
{
    XELT_LOG("[%s]GL_VERSION: %s", pszClass, GlString(gl, GL_VERSION));
    XELT_LOG("[%s]GL_VENDOR: %s", pszClass, GlString(gl, GL_VENDOR));
    XELT_LOG("[%s]GL_RENDERER: %s", pszClass, GlString(gl, GL_RENDERER));
    XELT_LOG("[%s]GL_SHADING_LANGUAGE_VERSION: %s", pszClass, GlString(gl, GL_SHADING_LANGUAGE_VERSION));
}

RetiredObjects::RetiredObjects() = default;
RetiredObjects::~RetiredObjects() = default;

void RetiredObjects::Add(std::unique_ptr<QOpenGLShaderProgram> &pProgram)
{
    MoveInto(m_vecPrograms, pProgram);
}

void RetiredObjects::Add(std::unique_ptr<QOpenGLTexture> &pTexture)
{
    MoveInto(m_vecTextures, pTexture);
}

void RetiredObjects::Add(std::unique_ptr<CLS_D3D11EGL> &pD3D11EGL)
{
    if (pD3D11EGL == nullptr) {
        return;
    }
    pD3D11EGL->ReleaseHostObjects();
    if (pD3D11EGL->HoldsContextObjects()) {
        MoveInto(m_vecD3D11EGL, pD3D11EGL);
    } else {
        pD3D11EGL.reset();
    }
}

void RetiredObjects::DestroyAll()
{
    m_vecPrograms.clear();
    for (std::unique_ptr<QOpenGLTexture> &pTexture : m_vecTextures) {
        DestroyTexture(pTexture);
    }
    m_vecTextures.clear();
    for (std::unique_ptr<CLS_D3D11EGL> &pD3D11EGL : m_vecD3D11EGL) {
        pD3D11EGL->ReleaseEGL();
        DestroyHardware(pD3D11EGL);
    }
    m_vecD3D11EGL.clear();
}

} // namespace yuv
