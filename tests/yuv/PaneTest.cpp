#include "PaneTest.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace xelttest {

void PaneTest::SetUp()
{
    ASSERT_TRUE(CoreLog::instance().isPresent());
    CoreLog::instance().reset();
}

void PaneTest::TearDown()
{
    if (m_pWindow == nullptr) {
        return;
    }
    for (void *pane : m_pWindow->panes()) {
        QOpenGLWidget *pWidget = paneWidget(pane);
        pWidget->makeCurrent();
        if (QOpenGLContext *pContext = QOpenGLContext::currentContext()) {
            EXPECT_EQ(pContext->functions()->glGetError(), GLenum(GL_NO_ERROR));
        }
        pWidget->doneCurrent();
    }
    m_pWindow.reset();
}

void PaneTest::open(const QSize &widgetSize)
{
    m_pWindow = std::make_unique<HostWindow>(widgetSize);
    ASSERT_EQ(m_pWindow->panes().size(), 1u);
    ASSERT_EQ(paneWidget(handle())->size(), widgetSize);
    ASSERT_GT(m_pWindow->paints(handle()), 0) << "the pane was never painted";
    m_view.widgetSize = widgetSize;
    m_view.dPixelRatio = scaleFactor();
    ASSERT_EQ(paneWidget(handle())->devicePixelRatioF(), m_view.dPixelRatio);
}

void PaneTest::submit(const HostFrame &frame)
{
    ASSERT_EQ(show(handle(), frame), 0);
    m_model = bufferModel(frame.desc, m_model);
}

void PaneTest::submitWithOverlays(const HostFrame &frame, const std::vector<XeltDrawInfo> &vecRecords)
{
    m_overlays.vecRecords = vecRecords;
    ASSERT_EQ(setDrawInfoCallback(handle(), &OverlayHost::callback, &m_overlays), 0);
    submit(frame);
}

void PaneTest::turnPicture(int nAngle, int nDirection, int nMirror)
{
    ASSERT_EQ(setRotation(handle(), nAngle, nDirection, nMirror), 0);
    m_view.nAngle = nAngle;
    m_view.nDirection = nDirection;
    m_view.nMirror = nMirror;
}

void PaneTest::zoom(double left, double top, double right, double bottom)
{
    ASSERT_EQ(setZoom(handle(), left, top, right, bottom), 0);
    m_view.zoom = {left, top, right, bottom};
}

void PaneTest::ratioMode(int nMode)
{
    ASSERT_EQ(setRatioMode(handle(), nMode), 0);
    m_view.area = ratioArea(m_view.widgetSize, m_model.nWidth, m_model.nHeight, nMode);
}

void PaneTest::dstRect(int left, int top, int right, int bottom)
{
    ASSERT_EQ(setDstRect(handle(), left, top, right, bottom), 0);
    m_view.area = dstArea(m_view.widgetSize, left, top, right, bottom);
}

ReferenceImage PaneTest::reference() const
{
    return faultyReference({});
}

ReferenceImage PaneTest::faultyReference(const Faults &faults) const
{
    View view = m_view;
    view.faults = faults;
    ReferenceImage image = renderPicture(m_model, view);
    if (!m_overlays.vecRecords.empty()) {
        renderOverlays(image, view, m_overlays.vecRecords, glFlavour());
    }
    return image;
}

::testing::AssertionResult PaneTest::matches(const Tolerance &tolerance, const std::string &sName) const
{
    return imageMatches(picture(), reference(), tolerance, QString::fromStdString(sName));
}

std::string sizeName(const QSize &size)
{
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

} // namespace xelttest
