#include "Failures.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QSurfaceFormat>

#include <cstdio>

// Every program has its own.
void RegisterBenchmarks();

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;

    // On X11 Qt makes OpenGL ES contexts through EGL only when told to; elsewhere nobody reads this.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "xcb_egl");
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGLES);
    format.setVersion(2, 0);
    QSurfaceFormat::setDefaultFormat(format);
    const QApplication application(argc, argv);

    RegisterBenchmarks();
    if (benchmark::RunSpecifiedBenchmarks() == 0) {
        std::fputs("xeltbench: no benchmark has such a name\n", stderr);
        return 2;
    }
    if (g_nBenchFailures > 0)
        std::fprintf(stderr, "xeltbench: %d benchmarks failed\n", g_nBenchFailures);
    return g_nBenchFailures > 0 ? 1 : 0;
}
