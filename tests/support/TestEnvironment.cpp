#include "TestEnvironment.h"

#include <QDir>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QSurfaceFormat>

namespace xelttest {

GlFlavour glFlavour()
{
    const QByteArray sFlavour = qgetenv("XELT_TEST_GL");
    if (sFlavour == "es") {
        return GlFlavour::Es;
    }
    return sFlavour == "desktop" ? GlFlavour::Desktop : GlFlavour::None;
}

int scaleFactor()
{
    const int nScale = qEnvironmentVariableIntValue("XELT_TEST_SCALE");
    return nScale > 0 ? nScale : 1;
}

int rendererType()
{
    return qEnvironmentVariableIntValue("XELT_TEST_RENDERER");
}

QString artifactDir()
{
    const QString sDir = qEnvironmentVariable("XELT_TEST_ARTIFACTS", QStringLiteral("test-artifacts"));
    QDir().mkpath(sDir);
    return sDir;
}

bool isDisplaysNoise(const QByteArray &abLine)
{
    const QByteArray abNoise = qgetenv("XELT_TEST_NOISE");
    return !abNoise.isEmpty() && abLine.startsWith(abNoise);
}

void applySurfaceFormat(GlFlavour flavour)
{
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setVersion(2, 0);
    format.setRenderableType(flavour == GlFlavour::Es ? QSurfaceFormat::OpenGLES : QSurfaceFormat::OpenGL);
    QSurfaceFormat::setDefaultFormat(format);
}

QString checkGl(GlFlavour flavour)
{
    QOpenGLContext context;
    if (!context.create()) {
        return QStringLiteral("no OpenGL context is to be had");
    }
    if (context.isOpenGLES() != (flavour == GlFlavour::Es)) {
        return QStringLiteral("the context is not of the flavour that XELT_TEST_GL asks for");
    }
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    return context.makeCurrent(&surface) ? QString()
                                         : QStringLiteral("the OpenGL context cannot be made current");
}

} // namespace xelttest
