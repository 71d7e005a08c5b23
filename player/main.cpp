// xeltplay: a host of XeltRender that plays video files or a test pattern.
#include "ClipMaker.h"
#include "Display.h"
#include "Options.h"
#include "PlayerWindow.h"
#include "TextureFrames.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QOpenGLContext>
#include <QSurfaceFormat>

#include <cstdio>
#include <exception>

namespace {

int fail(const char *pszText)
{
    std::fprintf(stderr, "xeltplay: %s\n", pszText);
    return kStatusFailed;
}

int leave(const EarlyExit &exit)
{
    if (exit.nStatus == 0) {
        std::printf("%s", qPrintable(exit.strText));
    } else {
        std::fprintf(stderr, "xeltplay: %s (--help lists the options)\n", qPrintable(exit.strText));
    }
    return exit.nStatus;
}

std::optional<EarlyExit> readCommandLine(int argc, char *argv[], Options &options)
{
    const QCoreApplication app(argc, argv);
    return parseOptions(QCoreApplication::arguments(), options);
}

// The renderers take the kind of context that the default format asks for. All of this has to be settled
// before the QApplication exists. The attribute is for Windows, the variable for X11.
void chooseGl(bool blDesktop)
{
    QCoreApplication::setAttribute(blDesktop ? Qt::AA_UseDesktopOpenGL : Qt::AA_UseOpenGLES);
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION")) {
        qputenv("QT_XCB_GL_INTEGRATION", blDesktop ? "xcb_glx" : "xcb_egl");
    }
    QSurfaceFormat format;
    format.setRenderableType(blDesktop ? QSurfaceFormat::OpenGL : QSurfaceFormat::OpenGLES);
    format.setVersion(2, 0);
    QSurfaceFormat::setDefaultFormat(format);
}

bool isGlThere(bool blDesktop)
{
    QOpenGLContext context;
    return context.create() && context.isOpenGLES() != blDesktop;
}

int play(const Options &options)
{
    PlayerWindow window(options);
    if (!window.start()) {
        return kStatusFailed;
    }
    QApplication::exec();
    return window.report();
}

} // namespace

int main(int argc, char *argv[])
{
    Options options;
    if (const auto early = readCommandLine(argc, argv, options)) {
        return leave(*early);
    }
    if (isDisplayMissing()) {
        return fail("there is no display to open a window on");
    }
    if (options.logLevel) {
        qputenv("XELT_CORELOG_LEVEL", QByteArray::number(*options.logLevel)); // read with the first renderer
    }
    if (options.logLevel.value_or(0) < 200) {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // the library's own steps
    }
    chooseGl(options.blDesktopGl);
    QApplication app(argc, argv);
    if (!isGlThere(options.blDesktopGl)) {
        return fail(options.blDesktopGl ? "no desktop OpenGL context can be created"
                                        : "no OpenGL ES context can be created");
    }
    if (options.layout == FrameLayout::Texture && TextureFrames::device() == nullptr) {
        return fail("no Direct3D 11 device with video support can be created");
    }
    if (options.astrFiles.isEmpty() && !options.pattern) {
        const Clip clip = testClip();
        if (!clip.strProblem.isEmpty()) {
            return fail(qPrintable(clip.strProblem));
        }
        options.astrFiles << clip.strFile;
        options.blLoop = true; // it is short
    }
    try {
        return play(options);
    } catch (const std::exception &error) { // no memory, no more threads
        return fail(error.what());
    }
}
