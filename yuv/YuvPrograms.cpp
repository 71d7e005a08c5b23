// Picture draws of CLS_ShaderYuv. GUI thread, the widget's context current,
// m_mutexFrame held.
#include "yuv/CLS_ShaderYuv.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "yuv/PictureGl.h"

#include <QMatrix4x4>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>

void CLS_ShaderYuv::PrepareQuad(geometry::QuadVertices &afPositions)
{
    Q_ASSERT(IsContextCurrent());
    m_pProgram->bind();
    ComputeQuadVertices(afPositions);
    yuv::UsePositions(*this, afPositions);
}

void CLS_ShaderYuv::BindPlane(uint32_t nUnit, uint32_t nTexture)
{
    glActiveTexture(GL_TEXTURE0 + nUnit);
    glBindTexture(GL_TEXTURE_2D, nTexture);
}

void CLS_ShaderYuv::UploadPlane(uint32_t nFormat, int32_t nWidth, int32_t nHeight, const uint8_t *pPixels)
{
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
    BindPlane(0, m_nTexIdY);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    UploadPlane(GL_RED, m_nVideoWidth, m_nVideoHeight, m_pFrameBuffer);
    BindPlane(1, m_nTexIdU);
    UploadPlane(GL_RED, m_nVideoWidth / 2, m_nVideoHeight / 2, m_pFrameBuffer + nLuma);
    BindPlane(2, m_nTexIdV);
    UploadPlane(GL_RED, m_nVideoWidth / 2, m_nVideoHeight / 2, m_pFrameBuffer + nLuma * 5 / 4);
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
    BindPlane(0, m_nTexIdY);
    UploadPlane(GL_RED, m_nVideoWidth, m_nVideoHeight, m_pPlaneY);
    BindPlane(1, m_nTexIdU);
    UploadPlane(GL_RG, m_nVideoWidth >> 1, m_nVideoHeight >> 1, m_pPlaneUV);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    glUniform1i(m_nLocDrawFlag, 0);
    SetMatrix();
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void CLS_ShaderYuv::SetMatrix()
{
    const XeltRotatePara para = CurrentPicture().rotation;
    const float fSign = para.nDirection != 0 ? 1.0f : -1.0f;
    QMatrix4x4 rotation;
    switch (para.nAngle) {
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
    if (para.nMirror == 1) {
        matrix.rotate(180, 0, 1, 0);
    } else if (para.nMirror == 2) {
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
