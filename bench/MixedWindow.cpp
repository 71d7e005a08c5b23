#include "MixedWindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <algorithm>

namespace {

constexpr int kOpenTimeoutMs = 20000;
constexpr int kGridColumns = 8;

} // namespace

std::size_t MixedWindow::Add(xelt::RendererType type, QSize size)
{
    auto renderer = xelt::Renderer::create(type);
    if (!renderer)
        qFatal("xeltbench: the library made no renderer");
    const int nCell = static_cast<int>(m_panes.size());
    renderer.widget()->setFixedSize(size);
    m_layout.addWidget(renderer.widget(), nCell / kGridColumns, nCell % kGridColumns);
    m_panes.push_back(std::move(renderer));
    return m_panes.size() - 1;
}

bool MixedWindow::Open()
{
    m_window.show();
    const auto ready = [this] {
        return std::all_of(m_panes.begin(), m_panes.end(), [](const xelt::Renderer &pane) {
            return pane.widget()->isVisible() && qobject_cast<QOpenGLWidget *>(pane.widget())->isValid();
        });
    };
    QElapsedTimer timer;
    timer.start();
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    while (!ready() && timer.elapsed() < kOpenTimeoutMs);
    return ready();
}

QOpenGLWidget &MixedWindow::Widget(std::size_t nPane) const
{
    return *qobject_cast<QOpenGLWidget *>(m_panes[nPane].widget());
}
