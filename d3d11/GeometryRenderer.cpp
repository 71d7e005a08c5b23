#include "d3d11/GeometryRenderer.h"

#include "log/QtMessages.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <atomic>
#include <cstring>
#include <utility>

namespace {

constexpr int kUnknown = -1;

// Whether buffers can be mapped: decided once for the process, by the context of the first update.
std::atomic<int> g_nSupportsMap{kUnknown};

void decideMapping()
{
    if (g_nSupportsMap >= 0) {
        return;
    }
    const QOpenGLContext *pContext = QOpenGLContext::currentContext();
    const bool blDesktop = pContext != nullptr ? !pContext->isOpenGLES()
                                               : QOpenGLContext::openGLModuleType() == QOpenGLContext::LibGL;
    g_nSupportsMap = blDesktop ? 1 : 0;
}

// GL reads as many bytes as the counts say; what a geometry left out reads as zero.
void complete(QByteArray &abData, int32_t nSize)
{
    if (abData.size() < nSize) {
        abData.append(QByteArray(nSize - abData.size(), '\0'));
    }
}

const char *indexBytes(const Geometry &geometry)
{
    return geometry.indexCount > 0 ? geometry.indexData.constData() : nullptr;
}

} // namespace

GeometryRenderer::GeometryRenderer() = default;
GeometryRenderer::~GeometryRenderer() = default;

void GeometryRenderer::updateGeometry(std::unique_ptr<Geometry> pGeometry)
{
    m_pGeometry = std::move(pGeometry);
    if (m_pGeometry == nullptr) {
        m_ibo.destroy();
        m_vbo.destroy();
        m_pVao.reset();
        m_nVboSize = 0;
        m_nIboSize = 0;
        m_blGeometryDirty = false;
        return;
    }
    complete(m_pGeometry->vertexData, m_pGeometry->stride() * m_pGeometry->vertexCount);
    complete(m_pGeometry->indexData, m_pGeometry->indexDataSize());
    decideMapping();
    updateIndexBuffer();
    updateVertexBuffer();
    updateLayout();
    m_blGeometryDirty = false;
}

void GeometryRenderer::updateIndexBuffer()
{
    if ((m_nFeatures & UseIndexBuffer) != 0 && !m_ibo.isCreated() && m_pGeometry->indexCount >= 1) {
        qtlog::Debug("creating IBO...");
        if (!m_ibo.create()) {
            qtlog::Debug("IBO create error");
        }
    }
    if (!m_ibo.isCreated()) {
        return;
    }
    m_ibo.bind();
    const int32_t nSize = m_pGeometry->indexDataSize();
    const char *pBytes = indexBytes(*m_pGeometry);
    if (nSize != m_nIboSize) {
        m_ibo.allocate(pBytes, nSize);
        m_nIboSize = nSize;
    } else if (!writeMapped(m_ibo, pBytes, nSize)) {
        m_ibo.write(0, pBytes, nSize);
    }
    m_ibo.release();
}

void GeometryRenderer::updateVertexBuffer()
{
    if ((m_nFeatures & UseVertexBuffer) != 0 && !m_vbo.isCreated()) {
        qtlog::Debug("creating VBO...");
        if (!m_vbo.create()) {
            qtlog::Warning("VBO create error");
        }
    }
    if (!m_vbo.isCreated()) {
        return;
    }
    m_vbo.bind();
    const int32_t nSize = m_pGeometry->stride() * m_pGeometry->vertexCount;
    const char *pBytes = m_pGeometry->vertexData.constData();
    if (nSize != m_nVboSize) {
        // Deliberate: unlike the index buffer's, the size is not recorded, so each update reallocates.
        m_vbo.allocate(pBytes, nSize);
    } else if (!writeMapped(m_vbo, pBytes, nSize)) {
        m_vbo.write(0, pBytes, nSize);
        m_nVboSize = nSize;
    }
    m_vbo.release();
}

bool GeometryRenderer::writeMapped(QOpenGLBuffer &buffer, const char *pBytes, int32_t nSize)
{
    if (g_nSupportsMap != 1 || (m_nFeatures & MapBuffers) == 0) {
        return false;
    }
    void *pMapped = buffer.map(QOpenGLBuffer::WriteOnly);
    if (pMapped == nullptr) {
        return false;
    }
    if (nSize > 0) {
        std::memcpy(pMapped, pBytes, static_cast<size_t>(nSize));
    }
    buffer.unmap();
    return true;
}

void GeometryRenderer::updateLayout()
{
    // Deliberate: the layout outlives the vertex array object, which destroy() therefore removes for good.
    if (m_pGeometry->stride() == m_nLastStride && m_pGeometry->attributes() == m_vecLastAttributes) {
        return;
    }
    m_nLastStride = m_pGeometry->stride();
    m_vecLastAttributes = m_pGeometry->attributes();
    if ((m_nFeatures & UseVertexArray) != 0 && !hasVao()) {
        qtlog::Debug("creating VAO...");
        m_pVao = std::make_unique<QOpenGLVertexArrayObject>();
        if (!m_pVao->create()) {
            qtlog::Debug("VAO create error");
        }
    }
    qtlog::Debug("vao updated");
    if (!hasVao()) {
        return;
    }
    m_pVao->bind();
    qtlog::Debug("geometry attributes changed, rebind vao...");
    if (m_vbo.isCreated()) {
        m_vbo.bind();
        setAttributePointers(*QOpenGLContext::currentContext()->functions(), nullptr);
        m_vbo.release();
    }
    if (m_ibo.isCreated()) {
        m_ibo.bind();
    }
    m_pVao->release();
    if (m_ibo.isCreated()) {
        m_ibo.release();
    }
    qtlog::Debug("geometry updated");
}

void GeometryRenderer::setAttributePointers(QOpenGLFunctions &gl, const char *pBase) const
{
    const QVector<VertexAttribute> &vecAttributes = m_pGeometry->attributes();
    for (int i = 0; i < vecAttributes.size(); ++i) {
        const VertexAttribute &attribute = vecAttributes.at(i);
        const auto nIndex = static_cast<GLuint>(i);
        // Without a base the address is an offset into the buffer that is bound.
        const auto nAddress = reinterpret_cast<uintptr_t>(pBase) + static_cast<uintptr_t>(attribute.offset);
        gl.glVertexAttribPointer(
            nIndex, attribute.tupleSize, static_cast<GLenum>(attribute.type),
            attribute.normalize ? GL_TRUE : GL_FALSE, m_pGeometry->stride(),
            reinterpret_cast<const void *>(nAddress)); // NOLINT(performance-no-int-to-ptr)
        gl.glEnableVertexAttribArray(nIndex);
    }
}

void GeometryRenderer::render()
{
    if (m_pGeometry == nullptr) {
        return;
    }
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    bind(gl);
    draw(gl);
    unbind(gl);
}

void GeometryRenderer::bind(QOpenGLFunctions &gl)
{
    const bool blHasVbo = m_vbo.isCreated();
    if (hasVao()) {
        m_pVao->bind();
        if (blHasVbo) {
            return;
        }
    } else if (m_ibo.isCreated()) {
        m_ibo.bind();
    }
    if (blHasVbo) {
        m_vbo.bind();
    }
    setAttributePointers(gl, blHasVbo ? nullptr : m_pGeometry->vertexData.constData());
}

void GeometryRenderer::draw(QOpenGLFunctions &gl) const
{
    const auto nMode = static_cast<GLenum>(m_pGeometry->primitive);
    if (m_pGeometry->indexCount < 1) {
        gl.glDrawArrays(nMode, 0, m_pGeometry->vertexCount);
        return;
    }
    gl.glDrawElements(nMode, m_pGeometry->indexCount, static_cast<GLenum>(m_pGeometry->indexType),
                      m_ibo.isCreated() ? nullptr : indexBytes(*m_pGeometry));
}

void GeometryRenderer::unbind(QOpenGLFunctions &gl)
{
    if (hasVao()) {
        m_pVao->release();
        if (m_vbo.isCreated()) {
            return;
        }
    }
    if (m_ibo.isCreated()) {
        m_ibo.release();
    }
    if (m_vbo.isCreated()) {
        m_vbo.release();
    }
    for (int i = 0; i < m_pGeometry->attributes().size(); ++i) {
        gl.glDisableVertexAttribArray(static_cast<GLuint>(i));
    }
}

void GeometryRenderer::destroy()
{
    m_vbo.destroy();
    m_pVao.reset();
    m_ibo.destroy();
    m_pGeometry.reset();
    m_nVboSize = 0;
    m_nIboSize = 0;
}
