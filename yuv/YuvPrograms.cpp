// Programs, textures and picture draws of CLS_ShaderYuv. GUI thread, the widget's context current,
// m_mutexFrame held.
#include "yuv/CLS_ShaderYuv.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "yuv/PictureGl.h"
#include "yuv/YuvShaderSources.h"

#include <QMatrix4x4>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>

void CLS_ShaderYuv::InitGLYV12()
{
    m_pProgram.reset(); // one picture program at a time
    m_pProgram = yuv::BuildProgram(yuv::kYv12VertexShader, yuv::kYv12FragmentShader);
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    m_nLocTexV = m_pProgram->uniformLocation("tex_v");
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_nLocDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    m_nLocDrawAlpha = m_pProgram->uniformLocation("u_fDrawAlpha");
    yuv::UseTextureCoordinates(*this);
    if (CreateTextures("CLS_ShaderYuv::InitGLYV12", true)) {
        glClearColor(0, 0, 0, 0);
    }
}

void CLS_ShaderYuv::InitGLNV12()
{
    m_pProgram.reset();
    m_pProgram = yuv::BuildProgram(yuv::kNv12VertexShader, yuv::kNv12FragmentShader);
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_nLocDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    m_nLocDrawAlpha = m_pProgram->uniformLocation("u_fDrawAlpha");
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    yuv::UseTextureCoordinates(*this);
    if (CreateTextures("CLS_ShaderYuv::InitGLNV12", false)) {
        glClearColor(0, 0, 0, 0);
    }
}

bool CLS_ShaderYuv::CreateTextures(const char *pszFunction, bool blThirdPlane)
{
    Q_ASSERT(IsContextCurrent());
    m_nTexIdY = 0;
    m_nTexIdU = 0;
    m_nTexIdV = 0;
    m_pTexY = yuv::NewTexture();
    m_pTexU = m_pTexY != nullptr ? yuv::NewTexture() : nullptr;
    m_pTexV = m_pTexU != nullptr && blThirdPlane ? yuv::NewTexture() : nullptr;
    if (m_pTexU == nullptr || (blThirdPlane && m_pTexV == nullptr)) {
        XELT_REPORT_ERROR("CLS_ShaderYuv", pszFunction, "new QOpenGLTexture faild,can not malloc memory!");
        return false;
    }
    m_nTexIdY = yuv::CreateTexture(*m_pTexY);
    m_nTexIdU = yuv::CreateTexture(*m_pTexU);
    if (blThirdPlane) {
        m_nTexIdV = yuv::CreateTexture(*m_pTexV);
    }
    m_nMaxTextureSize = yuv::MaxTextureSize(*this);
    return true;
}

bool CLS_ShaderYuv::CanUpload() const
{
    return HoldsWholeFrame() && m_nVideoWidth <= m_nMaxTextureSize && m_nVideoHeight <= m_nMaxTextureSize;
}

void CLS_ShaderYuv::PrepareQuad(geometry::QuadVertices &afPositions)
{
    Q_ASSERT(IsContextCurrent());
    m_pProgram->bind();
    ComputeQuadVertices(afPositions);
    yuv::UsePositions(*this, afPositions);
}

void CLS_ShaderYuv::UploadPlane(uint32_t nUnit, uint32_t nTexture, uint32_t nFormat, int32_t nWidth,
                                int32_t nHeight, const uint8_t *pPixels)
{
    glActiveTexture(GL_TEXTURE0 + nUnit);
    glBindTexture(GL_TEXTURE_2D, nTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(nFormat), nWidth, nHeight, 0, nFormat, GL_UNSIGNED_BYTE,
                 pPixels);
    yuv::SetPlaneSampling(*this);
}

void CLS_ShaderYuv::DrawYV12()
{
    if (m_pFrameBuffer == nullptr || m_nTexIdV == 0 || !CanUpload()) {
        return;
    }
    const size_t nLuma = static_cast<size_t>(m_nVideoWidth) * static_cast<size_t>(m_nVideoHeight);
    geometry::QuadVertices afPositions;
    PrepareQuad(afPositions);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    UploadPlane(0, m_nTexIdY, GL_RED, m_nVideoWidth, m_nVideoHeight, m_pFrameBuffer);
    UploadPlane(1, m_nTexIdU, GL_RED, m_nVideoWidth / 2, m_nVideoHeight / 2, m_pFrameBuffer + nLuma);
    UploadPlane(2, m_nTexIdV, GL_RED, m_nVideoWidth / 2, m_nVideoHeight / 2, m_pFrameBuffer + nLuma * 5 / 4);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    glUniform1i(m_nLocTexV, 2);
    glUniform1i(m_nLocDrawFlag, 0);
    SetMatrix();
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void CLS_ShaderYuv::DrawNV12()
{
    if (m_pPlaneY == nullptr || m_pPlaneUV == nullptr || m_nTexIdU == 0 || !CanUpload()) {
        return;
    }
    geometry::QuadVertices afPositions;
    PrepareQuad(afPositions);
    // The unpack alignment is left as it is, deliberately: the default of 4, for which the frame buffer has
    // spare bytes, or the 1 of an earlier YV12 picture.
    UploadPlane(0, m_nTexIdY, GL_RED, m_nVideoWidth, m_nVideoHeight, m_pPlaneY);
    UploadPlane(1, m_nTexIdU, GL_RG, m_nVideoWidth >> 1, m_nVideoHeight >> 1, m_pPlaneUV);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    glUniform1i(m_nLocDrawFlag, 0);
    SetMatrix();
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void CLS_ShaderYuv::SetMatrix()
{
    const float fSign = m_nVideoRotateDirection != 0 ? 1.0f : -1.0f;
    QMatrix4x4 rotation;
    switch (m_nVideoRotateAngle) {
    case 90:
        rotation.rotate(fSign * 90, 0, 0, 1);
        break;
    case 180:
        rotation.rotate(180, 0, 0, 1);
        break;
    case 270:
        rotation.rotate(fSign * 270, 0, 0, 1);
        break;
    default:
        break;
    }
    QMatrix4x4 matrix;
    if (mirrorType == 1) {
        matrix.rotate(180, 0, 1, 0);
    } else if (mirrorType == 2) {
        matrix.rotate(180, 1, 0, 0);
    }
    matrix *= rotation;
    m_pProgram->setUniformValue("u_Matrix", matrix);
}

void CLS_ShaderYuv::ReleaseGLResource()
{
    yuv::DestroyTexture(m_pTexY);
    yuv::DestroyTexture(m_pTexU);
    yuv::DestroyTexture(m_pTexV);
    m_pProgram.reset();
    m_retired.DestroyAll();
    if (m_pD3D11EGL != nullptr) {
        m_pD3D11EGL->ReleaseEGL();
    }
    m_blGLReady = false;
}
