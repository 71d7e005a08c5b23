#include "SubImageTest.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace xelttest {

const char *const k_pYv12Text =
    "ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player";
const char *const k_pNv12Text = "ShowYuvFrame Display type is VIDEO_DISPLAY_NV12,The Player is DxvaPlayer";
const char *const k_pD3D11Text = "ShowYuvFrame Display type is VIDEO_DISPLAY_DXGL,The Player is D3D11Player";

void SubImageTest::submit(const HostFrame &frame)
{
    ASSERT_EQ(show(handle(), frame), 0);
    if (frame.desc.nDisplayType == VIDEO_DISPLAY_DXGL) {
        m_model.nType = VIDEO_DISPLAY_DXGL;
    } else {
        m_model = bufferModel(frame.desc, m_model);
    }
}

void SubImageTest::submitWithOverlays(const HostFrame &frame, const std::vector<XeltDrawInfo> &vecRecords)
{
    m_overlays.vecRecords = vecRecords;
    ASSERT_EQ(setDrawInfoCallback(handle(), &OverlayHost::callback, &m_overlays), 0);
    submit(frame);
}

ReferenceImage SubImageTest::opaqueReference() const
{
    ReferenceImage image = renderPicture(m_model, m_view);
    std::vector<XeltDrawInfo> vecOpaque = m_overlays.vecRecords;
    for (XeltDrawInfo &record : vecOpaque) {
        record.fOpacity = 0.0f;
    }
    if (!vecOpaque.empty()) {
        renderOverlays(image, m_view, vecOpaque, glFlavour());
    }
    return image;
}

::testing::AssertionResult SubImageTest::matches(const Tolerance &tolerance, const std::string &sName) const
{
    return imageMatches(picture(), opaqueReference(), tolerance, QString::fromStdString(sName));
}

HostFrame SubImageTest::ofType(int nType, uint32_t nSeed)
{
    const Planes planes = makePlanes(Pattern::Card, 96, 64, nSeed);
    HostFrame frame = nType == VIDEO_DISPLAY_NV12 ? nv12Frame(planes) : yv12Frame(planes);
    frame.desc.nDisplayType = nType;
    return frame;
}

HostFrame SubImageTest::withLength(HostFrame frame)
{
    frame.desc.nDataLen = static_cast<int32_t>(frame.vecBlocks[0].size());
    return frame;
}

std::array<int, 3> SubImageTest::at(int x, int y) const
{
    return rgbAt(picture(), x * scaleFactor(), y * scaleFactor());
}

::testing::AssertionResult SubImageTest::noGlError() const
{
    QOpenGLWidget *pWidget = paneWidget(handle());
    pWidget->makeCurrent();
    const GLenum nError = QOpenGLContext::currentContext()->functions()->glGetError();
    pWidget->doneCurrent();
    if (nError != GL_NO_ERROR) {
        return ::testing::AssertionFailure() << "GL error " << nError;
    }
    return ::testing::AssertionSuccess();
}

} // namespace xelttest
