#include "d3d11/RgbProgram.h"

#include "d3d11/ColorMatrix.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

// GLES headers call it so; desktop ones have the same value under GL_BGRA.
#ifndef GL_BGRA_EXT
#define GL_BGRA_EXT 0x80E1
#endif

namespace {

constexpr int kTextureCount = 1;

QOpenGLFunctions &currentFunctions()
{
    return *QOpenGLContext::currentContext()->functions();
}

const char *glString(QOpenGLFunctions &gl, GLenum nName)
{
    const auto *pszValue = reinterpret_cast<const char *>(gl.glGetString(nName));
    return pszValue != nullptr ? pszValue : "";
}

void logGlStrings(QOpenGLFunctions &gl)
{
    XELT_LOG("CLS_D3D11EGL GL_VERSION: %s", glString(gl, GL_VERSION));
    XELT_LOG("CLS_D3D11EGL GL_VENDOR: %s", glString(gl, GL_VENDOR));
    XELT_LOG("CLS_D3D11EGL GL_RENDERER: %s", glString(gl, GL_RENDERER));
    XELT_LOG("CLS_D3D11EGL GL_SHADING_LANGUAGE_VERSION: %s", glString(gl, GL_SHADING_LANGUAGE_VERSION));
}

} // namespace

int32_t rgb::MaxTextureSize()
{
    GLint nMax = 0;
    currentFunctions().glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nMax);
    return nMax;
}

RgbProgram::RgbProgram(const void *pOwner, const char *pszVertexShader, const char *pszFragmentShader)
    : m_pOwner(pOwner), m_pszVertexShader(pszVertexShader), m_pszFragmentShader(pszFragmentShader)
{
}

RgbProgram::~RgbProgram()
{
    DestroyTextures();
}

int32_t RgbProgram::CreateGlslResource(const LogPosition &position)
{
    if (m_pProgram != nullptr) {
        return 0;
    }
    m_pProgram = std::make_unique<QOpenGLShaderProgram>();
    m_pProgram->removeAllShaders();
    m_pProgram->addShaderFromSourceCode(QOpenGLShader::Vertex, m_pszVertexShader);
    m_pProgram->addShaderFromSourceCode(QOpenGLShader::Fragment, m_pszFragmentShader);
    GLint nMaxAttributes = 0; // asked for, but not used
    currentFunctions().glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, &nMaxAttributes);
    m_pProgram->bindAttributeLocation("a_Position", 0);
    m_pProgram->bindAttributeLocation("a_TexCoords0", 1);
    if (!m_pProgram->link()) {
        XELT_REPORT_ERROR_FROM(position, "QSGMaterialShader: Shader compilation failed: %s %p",
                               qPrintable(m_pProgram->log()), m_pOwner);
        return -1;
    }
    if (!m_pProgram->bind()) {
        XELT_REPORT_ERROR_FROM(position, "QSGMaterialShader: Shader bind failed:%s",
                               qPrintable(m_pProgram->log()));
        return -1;
    }
    LookUpUniforms();
    LookUpSamplers();
    LogLocations();
    return 0;
}

void RgbProgram::LookUpUniforms()
{
    m_locations.nMatrix = m_pProgram->uniformLocation("u_Matrix");
    m_locations.nColorMatrix = m_pProgram->uniformLocation("u_colorMatrix");
    m_locations.nTo8 = m_pProgram->uniformLocation("u_to8");
    m_locations.nOpacity = m_pProgram->uniformLocation("u_opacity");
    m_locations.nChannels = m_pProgram->uniformLocation("u_c");
    m_locations.nTexelSize = m_pProgram->uniformLocation("u_texelSize");
    m_locations.nTextureSize = m_pProgram->uniformLocation("u_textureSize");
    m_locations.nDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_locations.nDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    m_locations.nDrawAlpha = m_pProgram->uniformLocation("u_fDrawAlpha");
}

void RgbProgram::LookUpSamplers()
{
    m_vecSamplers.resize(kTextureCount);
    qtlog::Debug("uniform locations:");
    for (int i = 0; i < m_vecSamplers.size(); ++i) {
        const QString sName = QStringLiteral("u_Texture%1").arg(i);
        m_vecSamplers[i] = m_pProgram->uniformLocation(sName);
        qtlog::Debug("%s: %d", qPrintable(sName), m_vecSamplers.at(i));
    }
}

void RgbProgram::LogLocations() const
{
    qtlog::Debug("u_Matrix: %d", m_locations.nMatrix);
    qtlog::Debug("u_colorMatrix: %d", m_locations.nColorMatrix);
    qtlog::Debug("u_opacity: %d", m_locations.nOpacity);
    if (m_locations.nChannels >= 0) {
        qtlog::Debug("u_c: %d", m_locations.nChannels);
    }
    if (m_locations.nTo8 >= 0) {
        qtlog::Debug("u_to8: %d", m_locations.nTo8);
    }
    if (m_locations.nTexelSize >= 0) {
        qtlog::Debug("u_texelSize: %d", m_locations.nTexelSize);
    }
    if (m_locations.nTextureSize >= 0) {
        qtlog::Debug("u_textureSize: %d", m_locations.nTextureSize);
    }
}

int32_t RgbProgram::BindEglTextures(const LogPosition &position, int32_t nWidth, int32_t nHeight)
{
    m_nInternalFormat = GL_BGRA_EXT;
    m_nFormat = GL_BGRA_EXT;
    m_nDataType = GL_UNSIGNED_BYTE;
    m_channels.setToIdentity();
    const bool blHasSize = rgb::IsTextureSize(nWidth, nHeight, rgb::MaxTextureSize());
    NewTextureName();
    QOpenGLFunctions &gl = currentFunctions();
    gl.glBindTexture(GL_TEXTURE_2D, Texture());
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    if (blHasSize) {
        gl.glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(m_nInternalFormat), nWidth, nHeight, 0,
                        m_nFormat, m_nDataType, nullptr);
    }
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    GLenum nError = gl.glGetError();
    if (nError == GL_NO_ERROR && !blHasSize) {
        nError = GL_INVALID_VALUE; // which is GL's answer
    }
    if (nError != GL_NO_ERROR) {
        XELT_REPORT_ERROR_FROM(position, "glGetError() != GL_NO_ERROR glBindTexture err = %d",
                               static_cast<int>(nError));
    }
    logGlStrings(gl);
    return 0;
}

// The old name goes after the new one is there: the same name again would pass for one that is bound to the
// picture's surface already.
void RgbProgram::NewTextureName()
{
    QOpenGLFunctions &gl = currentFunctions();
    QOpenGLContextGroup *pGroup = QOpenGLContextGroup::currentContextGroup();
    const uint32_t nOld = Texture();
    m_vecTextures.resize(kTextureCount);
    gl.glGenTextures(kTextureCount, m_vecTextures.data());
    if (nOld != 0 && m_pTextureGroup == pGroup) {
        gl.glDeleteTextures(1, &nOld);
    }
    m_pTextureGroup = pGroup;
}

bool RgbProgram::Bind()
{
    return m_pProgram != nullptr && m_pProgram->bind();
}

void RgbProgram::Release()
{
    if (m_pProgram != nullptr) {
        m_pProgram->release();
    }
}

void RgbProgram::LoadColorUniforms(ColorMatrix &colorMatrix)
{
    m_pProgram->setUniformValue(m_vecSamplers.value(0, -1), 0);
    colorMatrix.updateColorMatrix();
    m_pProgram->setUniformValue(m_locations.nColorMatrix, colorMatrix.matrix());
    m_pProgram->setUniformValue(m_locations.nOpacity, 1.0f);
    m_pProgram->setUniformValue(m_locations.nChannels, m_channels);
}

void RgbProgram::SetMatrix(const QMatrix4x4 &matrix)
{
    m_pProgram->setUniformValue(m_locations.nMatrix, matrix);
}

void RgbProgram::SetDrawFlag(int32_t nFlag)
{
    m_pProgram->setUniformValue(m_locations.nDrawFlag, nFlag);
}

void RgbProgram::DestroyProgram()
{
    Release();
    m_pProgram.reset();
}

void RgbProgram::DestroyTextures()
{
    if (Texture() != 0 && m_pTextureGroup != nullptr &&
        m_pTextureGroup == QOpenGLContextGroup::currentContextGroup()) {
        currentFunctions().glDeleteTextures(m_vecTextures.size(), m_vecTextures.constData());
    }
    m_vecTextures.clear();
}
