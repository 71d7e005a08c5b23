#include "BenchPane.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QImage>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPaintEvent>

namespace {

constexpr int kOpenTimeoutMs = 20000;
constexpr int kGridColumns = 10;

bool HasOneColour(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != image.pixel(0, 0))
                return false;
    return true;
}

} // namespace

xelt::Renderer MakeRenderer()
{
    auto renderer = xelt::Renderer::create(xelt::RendererType::Yuv);
    if (!renderer)
        qFatal("xeltbench: the library made no renderer");
    return renderer;
}

PaneWindow::PaneWindow(int nPairs, QSize paneSize, const BenchFrame &frame)
{
    auto *pLayout = new QGridLayout(&m_window);
    pLayout->setSpacing(0);
    pLayout->setContentsMargins(0, 0, 0, 0);
    int nCell = 0;
    const auto place = [&](QWidget *pWidget) {
        pWidget->setFixedSize(paneSize);
        pLayout->addWidget(pWidget, nCell / kGridColumns, nCell % kGridColumns);
        ++nCell;
    };
    for (int i = 0; i < nPairs; ++i) {
        m_renderers.push_back(MakeRenderer());
        place(m_renderers.back().widget());
        m_bare.push_back(new BareWidget(frame));
        place(m_bare.back());
    }
}

bool PaneWindow::Open()
{
    m_window.show();
    const auto ready = [](const QOpenGLWidget &widget) { return widget.isVisible() && widget.isValid(); };
    const auto allReady = [&] {
        for (int i = 0; i < static_cast<int>(m_bare.size()); ++i)
            if (!ready(Bare(i)) || !ready(PaneWidget(i)))
                return false;
        return true;
    };
    QElapsedTimer timer;
    timer.start();
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    while (!allReady() && timer.elapsed() < kOpenTimeoutMs);
    return allReady();
}

QOpenGLWidget &PaneWindow::PaneWidget(int nIndex) const
{
    return *qobject_cast<QOpenGLWidget *>(Pane(nIndex).widget());
}

bool PaneWindow::PicturesAgree(int nIndex) const
{
    const QImage ours = PaneWidget(nIndex).grabFramebuffer();
    const QImage bare = Bare(nIndex).grabFramebuffer();
    return !HasOneColour(bare) && ours == bare;
}

void PaintNow(QOpenGLWidget &widget)
{
    QPaintEvent event(widget.rect());
    QCoreApplication::sendEvent(&widget, &event);
    QOpenGLContext::currentContext()->functions()->glFinish();
}

void DrainEvents()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}
