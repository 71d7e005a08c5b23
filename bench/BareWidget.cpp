#include "BareWidget.h"

#include "yuv/YuvShaderSources.h"

#include <QMatrix4x4>

namespace {

// The same placement as a pane's: the whole widget, left-bottom first, texture row 0 on top.
constexpr float kPositions[] = {-1, -1, 1, -1, -1, 1, 1, 1};
constexpr float kTextureCoords[] = {0, 1, 1, 1, 0, 0, 1, 0};

constexpr GLenum kFormatRed = 0x1903;
constexpr GLenum kFormatRg = 0x8227;

} // namespace

BareWidget::BareWidget(const BenchFrame &frame) : m_frame(frame), m_pPixels(frame.MakeTarget()) {}

BareWidget::~BareWidget()
{
    makeCurrent();
    if (isValid())
        glDeleteTextures(3, m_aTextures);
    m_pProgram.reset();
    doneCurrent();
}

void BareWidget::Submit()
{
    if (m_frame.HasPaddedRows())
        m_frame.CopyRows(m_pPixels.get());
    else
        m_frame.CopyOnce(m_pPixels.get());
}

void BareWidget::initializeGL()
{
    initializeOpenGLFunctions();
    const bool blYv12 = m_frame.Layout() == FrameLayout::Yv12;
    m_pProgram = std::make_unique<QOpenGLShaderProgram>();
    m_pProgram->addShaderFromSourceCode(QOpenGLShader::Vertex,
                                        blYv12 ? yuv::kYv12VertexShader : yuv::kNv12VertexShader);
    m_pProgram->addShaderFromSourceCode(QOpenGLShader::Fragment,
                                        blYv12 ? yuv::kYv12FragmentShader : yuv::kNv12FragmentShader);
    m_pProgram->bindAttributeLocation("vertexIn", 0);
    m_pProgram->bindAttributeLocation("textureIn", 1);
    m_pProgram->link();
    m_pProgram->bind();
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    m_nLocTexV = m_pProgram->uniformLocation("tex_v");
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, kTextureCoords);
    glEnableVertexAttribArray(1);
    glGenTextures(3, m_aTextures);
    glClearColor(0, 0, 0, 0);
}

void BareWidget::paintGL()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    m_pProgram->bind();
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, kPositions);
    glEnableVertexAttribArray(0);
    if (m_frame.Layout() == FrameLayout::Yv12)
        DrawYv12();
    else
        DrawNv12();
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_BLEND);
}

void BareWidget::DrawYv12()
{
    const int nWidth = m_frame.Size().nWidth;
    const int nHeight = m_frame.Size().nHeight;
    const std::size_t nLuma = m_frame.PictureBytes() / 3 * 2;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    UploadPlane(0, kFormatRed, nWidth, nHeight, m_pPixels.get());
    UploadPlane(1, kFormatRed, nWidth / 2, nHeight / 2, m_pPixels.get() + nLuma);
    UploadPlane(2, kFormatRed, nWidth / 2, nHeight / 2, m_pPixels.get() + nLuma * 5 / 4);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    glUniform1i(m_nLocTexV, 2);
    DrawQuad();
}

void BareWidget::DrawNv12()
{
    const int nWidth = m_frame.Size().nWidth;
    const int nHeight = m_frame.Size().nHeight;
    const std::size_t nLuma = m_frame.PictureBytes() / 3 * 2;
    UploadPlane(0, kFormatRed, nWidth, nHeight, m_pPixels.get());
    UploadPlane(1, kFormatRg, nWidth / 2, nHeight / 2, m_pPixels.get() + nLuma);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    DrawQuad();
}

void BareWidget::UploadPlane(int nUnit, GLenum format, int nWidth, int nHeight, const std::uint8_t *pPixels)
{
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(nUnit));
    glBindTexture(GL_TEXTURE_2D, m_aTextures[nUnit]);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), nWidth, nHeight, 0, format, GL_UNSIGNED_BYTE,
                 pPixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void BareWidget::DrawQuad()
{
    const QMatrix4x4 identity;
    glUniform1i(m_nLocDrawFlag, 0);
    m_pProgram->setUniformValue("u_Matrix", identity);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}
