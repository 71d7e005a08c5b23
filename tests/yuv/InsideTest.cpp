#include "InsideTest.h"

#include "log/CLS_OmbrixApi.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace xelttest {

void startInsideTest()
{
    ASSERT_TRUE(CoreLog::instance().isPresent());
    ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0);
    CoreLog::instance().reset();
}

HostFrame insideFrame(int nType, const QSize &size, uint32_t nSeed)
{
    const Planes planes = makePlanes(Pattern::Card, size.width(), size.height(), nSeed);
    HostFrame made = nType == VIDEO_DISPLAY_NV12 ? nv12Frame(planes) : yv12Frame(planes);
    made.desc.nDisplayType = nType;
    return made;
}

::testing::AssertionResult showsFrame(const QImage &picture, const QSize &widgetSize, const HostFrame &frame)
{
    View view;
    view.widgetSize = widgetSize;
    view.dPixelRatio = scaleFactor();
    return imageMatches(picture, renderPicture(bufferModel(frame.desc), view), Tolerance{4.0, 0.8, 0.1});
}

int existing(QOpenGLWidget &witness, const GlNames &names)
{
    witness.makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = 0;
    if (gl.glIsProgram(names.nProgram) != 0) {
        // A deleted program lives on while it is current in a context.
        GLint nDeleted = 0;
        gl.glGetProgramiv(names.nProgram, GL_DELETE_STATUS, &nDeleted);
        nCount += nDeleted == 0 ? 1 : 0;
    }
    for (const GLuint nTexture : names.vecTextures) {
        nCount += gl.glIsTexture(nTexture) != 0 ? 1 : 0;
    }
    witness.doneCurrent();
    return nCount;
}

int textures(QOpenGLWidget &witness)
{
    constexpr GLuint k_nHighestName = 1000;
    witness.makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = 0;
    for (GLuint nName = 1; nName <= k_nHighestName; ++nName) {
        nCount += gl.glIsTexture(nName) != 0 ? 1 : 0;
    }
    witness.doneCurrent();
    return nCount;
}

} // namespace xelttest
