// A context of the entry's GL flavour with a framebuffer of its own, current while it lives.
#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>

#include <memory>
#include <stdexcept>

namespace xelttest {

class OffscreenGl
{
public:
    explicit OffscreenGl(const QSize &size = QSize(8, 8))
    {
        m_surface.setFormat(QSurfaceFormat::defaultFormat());
        m_surface.create();
        if (!m_context.create()) {
            throw std::runtime_error("no OpenGL context");
        }
        makeCurrent();
        m_pFramebuffer = std::make_unique<QOpenGLFramebufferObject>(size);
        useFramebuffer();
    }

    ~OffscreenGl()
    {
        m_context.makeCurrent(&m_surface);
        m_pFramebuffer.reset();
        m_context.doneCurrent();
    }

    OffscreenGl(const OffscreenGl &) = delete;
    OffscreenGl &operator=(const OffscreenGl &) = delete;

    void makeCurrent()
    {
        if (!m_context.makeCurrent(&m_surface)) {
            throw std::runtime_error("the OpenGL context cannot be made current");
        }
        if (m_pFramebuffer != nullptr) {
            useFramebuffer();
        }
    }

    void doneCurrent() { m_context.doneCurrent(); }

    // Top row first, alpha not multiplied in.
    QImage picture()
    {
        QImage picture(m_pFramebuffer->size(), QImage::Format_RGBA8888);
        gl().glReadPixels(0, 0, picture.width(), picture.height(), GL_RGBA, GL_UNSIGNED_BYTE, picture.bits());
        return picture.mirrored();
    }

    void clear()
    {
        gl().glClearColor(0, 0, 0, 0);
        gl().glClear(GL_COLOR_BUFFER_BIT);
    }

    QOpenGLContext &context() { return m_context; }
    QOpenGLFunctions &gl() { return *m_context.functions(); }

private:
    void useFramebuffer()
    {
        m_pFramebuffer->bind();
        gl().glViewport(0, 0, m_pFramebuffer->width(), m_pFramebuffer->height());
    }

    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_pFramebuffer;
};

} // namespace xelttest
