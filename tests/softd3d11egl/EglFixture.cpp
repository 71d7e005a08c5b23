#include "EglFixture.h"

#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>

#include <dlfcn.h>

#include "platform/Direct3DDeclarations.h"
#include "softd3d11/SoftD3D11.h"

namespace xelttest {

GlContext::GlContext(QOpenGLContext *pShare, const QSurfaceFormat &format)
{
    if (format != QSurfaceFormat()) {
        m_context.setFormat(format);
    }
    m_context.setShareContext(pShare);
    EXPECT_TRUE(m_context.create());
    m_surface.setFormat(m_context.format());
    m_surface.create();
    EXPECT_TRUE(makeCurrent());
}

GlContext::~GlContext() = default;

GLuint GlContext::makeTexture()
{
    GLuint nTexture = 0;
    gl().glGenTextures(1, &nTexture);
    gl().glBindTexture(GL_TEXTURE_2D, nTexture);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return nTexture;
}

QImage GlContext::draw(GLuint nTexture, const QSize &size)
{
    QOpenGLFramebufferObject target(size);
    EXPECT_TRUE(target.bind());
    QOpenGLShaderProgram program;
    program.addShaderFromSourceCode(QOpenGLShader::Vertex,
                                    "attribute vec2 a_Place;\n"
                                    "varying vec2 v_Place;\n"
                                    "void main() {\n"
                                    "    v_Place = a_Place;\n"
                                    "    gl_Position = vec4(a_Place * 2.0 - 1.0, 0.0, 1.0);\n"
                                    "}\n");
    program.addShaderFromSourceCode(QOpenGLShader::Fragment,
                                    "#ifdef GL_ES\n"
                                    "precision highp float;\n"
                                    "#endif\n"
                                    "uniform sampler2D u_Texture;\n"
                                    "varying vec2 v_Place;\n"
                                    "void main() { gl_FragColor = texture2D(u_Texture, v_Place); }\n");
    program.bindAttributeLocation("a_Place", 0);
    EXPECT_TRUE(program.link()) << program.log().toStdString();
    EXPECT_TRUE(program.bind());
    program.setUniformValue("u_Texture", 0);
    const GLfloat corners[] = {0, 0, 1, 0, 0, 1, 1, 1};
    gl().glActiveTexture(GL_TEXTURE0);
    gl().glBindTexture(GL_TEXTURE_2D, nTexture);
    gl().glViewport(0, 0, size.width(), size.height());
    gl().glDisable(GL_BLEND);
    gl().glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl().glEnableVertexAttribArray(0);
    gl().glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, corners);
    gl().glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    gl().glDisableVertexAttribArray(0);
    program.release();
    QImage image(size, QImage::Format_RGBA8888);
    gl().glReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    target.release();
    return image;
}

QImage GlContext::readUnnoticed(GLuint nTexture, const QSize &size)
{
    using ReadPixels = void (*)(GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, void *);
    const auto pReadPixels = reinterpret_cast<ReadPixels>(dlsym(RTLD_DEFAULT, "glReadPixels"));
    GLuint nFramebuffer = 0;
    gl().glGenFramebuffers(1, &nFramebuffer);
    gl().glBindFramebuffer(GL_FRAMEBUFFER, nFramebuffer);
    gl().glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nTexture, 0);
    EXPECT_EQ(GLenum{GL_FRAMEBUFFER_COMPLETE}, gl().glCheckFramebufferStatus(GL_FRAMEBUFFER));
    QImage image(size, QImage::Format_RGBA8888);
    pReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    gl().glBindFramebuffer(GL_FRAMEBUFFER, m_context.defaultFramebufferObject());
    gl().glDeleteFramebuffers(1, &nFramebuffer);
    return image;
}

SoftDevice::SoftDevice()
{
    EXPECT_EQ(S_OK, softd3d11::CreateDevice(&m_pDevice));
}

SoftDevice::~SoftDevice()
{
    m_pDevice->Release();
}

SharedTexture::SharedTexture(ID3D11Device *pDevice, const QSize &size) : m_size(size)
{
    D3D11_TEXTURE2D_DESC desc{};
    desc.Width = static_cast<UINT>(size.width());
    desc.Height = static_cast<UINT>(size.height());
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_DEFAULT;
    desc.BindFlags = D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE;
    desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
    EXPECT_EQ(S_OK, pDevice->CreateTexture2D(&desc, nullptr, &m_pTexture));
    IDXGIResource *pResource = nullptr;
    EXPECT_EQ(S_OK, m_pTexture->QueryInterface(IID_IDXGIResource, reinterpret_cast<void **>(&pResource)));
    EXPECT_EQ(S_OK, pResource->GetSharedHandle(&m_hShared));
    pResource->Release();
}

SharedTexture::~SharedTexture()
{
    m_pTexture->Release();
}

QImage SharedTexture::write(int nSeed)
{
    QImage image(m_size, QImage::Format_RGBA8888);
    std::vector<std::uint8_t> rows;
    for (int nY = 0; nY < m_size.height(); ++nY) {
        for (int nX = 0; nX < m_size.width(); ++nX) {
            const int nRed = (nX + 31 * nSeed) & 255;
            const int nGreen = (nY + 57 * nSeed) & 255;
            const int nBlue = (nX * 3 + nY * 5 + 91 * nSeed) & 255;
            const int nAlpha = (255 - nX - nY - nSeed) & 255;
            std::uint8_t *const pPixel = image.scanLine(nY) + nX * 4;
            pPixel[0] = std::uint8_t(nRed);
            pPixel[1] = std::uint8_t(nGreen);
            pPixel[2] = std::uint8_t(nBlue);
            pPixel[3] = std::uint8_t(nAlpha);
            rows.insert(rows.end(), {pPixel[2], pPixel[1], pPixel[0], pPixel[3]});
        }
    }
    ID3D11Device *pDevice = nullptr;
    ID3D11DeviceContext *pContext = nullptr;
    m_pTexture->GetDevice(&pDevice);
    pDevice->GetImmediateContext(&pContext);
    pContext->UpdateSubresource(m_pTexture, 0, nullptr, rows.data(), static_cast<UINT>(m_size.width()) * 4,
                                0);
    pContext->Release();
    pDevice->Release();
    return image;
}

EglFixture::EglFixture()
    : m_pContext(std::make_unique<GlContext>()),
      m_pDevice(std::make_unique<SoftDevice>()),
      m_hDisplay(eglGetCurrentDisplay())
{
    const auto config = pictureConfig(m_hDisplay);
    EXPECT_TRUE(config);
    m_hConfig = config.value_or(nullptr);
    softegl::ResetCallCounts();
}

EglFixture::~EglFixture()
{
    softegl::ClearFailures();
    softegl::HideExtension(false);
    m_pContext.reset();
    m_pDevice.reset();
    EXPECT_EQ(0U, softegl::LiveSurfaces());
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_EQ(0U, softd3d11::LiveObjects());
}

std::vector<EGLint> EglFixture::attributes(const QSize &size, EGLint nFormat)
{
    return {EGL_WIDTH,
            size.width(),
            EGL_HEIGHT,
            size.height(),
            EGL_TEXTURE_FORMAT,
            nFormat,
            EGL_TEXTURE_TARGET,
            nFormat == EGL_NO_TEXTURE ? EGL_NO_TEXTURE : EGL_TEXTURE_2D,
            EGL_NONE};
}

EGLSurface EglFixture::makeSurface(const SharedTexture &texture, EGLint nFormat)
{
    return makeSurface(texture.handle(), attributes(texture.size(), nFormat));
}

EGLSurface EglFixture::makeSurface(EGLClientBuffer hBuffer, const std::vector<EGLint> &attributes)
{
    return eglCreatePbufferFromClientBuffer(m_hDisplay, EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE, hBuffer,
                                            m_hConfig, attributes.data());
}

void EglFixture::expectNextWriteShown(SharedTexture &texture, int nSeed, GlContext &context, GLuint nTexture)
{
    const QImage written = texture.write(nSeed);
    EXPECT_EQ(written, context.draw(nTexture, texture.size())) << nSeed;
}

std::optional<EGLConfig> pictureConfig(EGLDisplay hDisplay)
{
    const EGLint attributes[] = {
        EGL_RED_SIZE,   8, EGL_GREEN_SIZE,           8,        EGL_BLUE_SIZE,    8,
        EGL_ALPHA_SIZE, 8, EGL_BIND_TO_TEXTURE_RGBA, EGL_TRUE, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
        EGL_NONE};
    EGLConfig hConfig = nullptr;
    EGLint nCount = 0;
    if (eglChooseConfig(hDisplay, attributes, &hConfig, 1, &nCount) == EGL_FALSE || nCount < 1) {
        return std::nullopt;
    }
    return hConfig;
}

QImage blackImage(const QSize &size)
{
    QImage image(size, QImage::Format_RGBA8888);
    image.fill(Qt::black);
    return image;
}

} // namespace xelttest
