// Drawing of CLS_D3D11EGL. Painting thread, the widget's context current, the renderer's frame mutex held.
#include "d3d11/CLS_D3D11EGL.h"

#include "d3d11/D3D11VP.h"
#include "d3d11/GeometryRenderer.h"
#include "d3d11/TexturedGeometry.h"

#include <QMatrix4x4>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QRectF>

namespace {

bool SameRect(const geometry::NormRect &a, const geometry::NormRect &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

} // namespace

int32_t CLS_D3D11EGL::DrawFlagLocation() const
{
    return m_program.Locations().nDrawFlag;
}

int32_t CLS_D3D11EGL::DrawColorLocation() const
{
    return m_program.Locations().nDrawColor;
}

int32_t CLS_D3D11EGL::DrawAlphaLocation() const
{
    return m_program.Locations().nDrawAlpha;
}

bool CLS_D3D11EGL::BindProgram()
{
    if (!m_program.Bind()) {
        return false;
    }
    m_program.SetMatrix(PictureMatrix());
    return true;
}

void CLS_D3D11EGL::SetAreas(const geometry::NormRect &rcDrawArea, const geometry::NormRect &rcEZoom)
{
    if (SameRect(rcDrawArea, m_rcDrawArea) && SameRect(rcEZoom, m_rcEZoom)) {
        return;
    }
    m_rcDrawArea = rcDrawArea;
    m_rcEZoom = rcEZoom;
    if (m_pGeometryRenderer != nullptr) {
        m_pGeometryRenderer->markDirty();
    }
}

void CLS_D3D11EGL::SetRotation(int32_t nDirection, int32_t nAngle, int32_t nMirror)
{
    m_nRotateDirection = nDirection;
    m_nRotateAngle = nAngle;
    m_nMirror = nMirror;
}

int32_t CLS_D3D11EGL::Render(const QRect &rect)
{
    if (!m_pTexture) {
        return 0;
    }
    if (m_blMapped) {
        QOpenGLContext *pContext = QOpenGLContext::currentContext();
        pContext->functions()->glViewport(0, 0, rect.width(), rect.height());
        if (!pContext->isOpenGLES()) {
            return -1;
        }
        Draw();
    }
    return Map(); // what is converted now is drawn by the next paint
}

void CLS_D3D11EGL::Draw()
{
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    gl.glActiveTexture(GL_TEXTURE0);
    gl.glBindTexture(GL_TEXTURE_2D, m_program.Texture());
    if (!m_program.Bind()) {
        return;
    }
    if (!m_colorMatrix.isValid()) {
        m_program.LoadColorUniforms(m_colorMatrix);
    }
    m_program.SetMatrix(PictureMatrix());
    UpdateGeometry();
    gl.glEnable(GL_BLEND);
    gl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_program.SetDrawFlag(0);
    m_pGeometryRenderer->render();
    gl.glDisable(GL_BLEND);
    gl.glFinish();
    m_program.Release();
}

void CLS_D3D11EGL::UpdateGeometry()
{
    if (m_pGeometryRenderer == nullptr) {
        m_pGeometryRenderer = std::make_unique<GeometryRenderer>();
    }
    if (!m_pGeometryRenderer->needsUpdate()) {
        return;
    }
    geometry::QuadVertices afCorners;
    geometry::ComputeQuad(m_rcDrawArea, m_rcEZoom, afCorners);
    const QPointF ptTopLeft(afCorners[4], afCorners[5]);
    const QPointF ptBottomRight(afCorners[2], afCorners[3]);
    auto pGeometry = std::make_unique<TexturedGeometry>();
    pGeometry->setTextureCount(1);
    pGeometry->setRect(QRectF(ptTopLeft, ptBottomRight)); // clip space: its height is negative
    pGeometry->setTextureRect(QRectF(0, 0, 1, 1), 0);
    pGeometry->create();
    m_pGeometryRenderer->updateGeometry(std::move(pGeometry));
}

QMatrix4x4 CLS_D3D11EGL::PictureMatrix() const
{
    QMatrix4x4 rotation;
    switch (m_nRotateAngle) {
    case 90:
        rotation.rotate(m_nRotateDirection != 0 ? 90.0f : -90.0f, 0, 0, 1);
        break;
    case 180:
        rotation.rotate(180, 0, 0, 1);
        break;
    case 270:
        // The sign comes from the mirror type here and not from the direction, deliberately.
        rotation.rotate(m_nMirror != 0 ? 270.0f : -270.0f, 0, 0, 1);
        break;
    default:
        break;
    }
    QMatrix4x4 matrix;
    if (m_nMirror == 1) {
        matrix.rotate(180, 0, 1, 0);
    } else if (m_nMirror == 2) {
        matrix.rotate(180, 1, 0, 0);
    }
    matrix *= rotation;
    return matrix;
}
