// The main of the tests. With a GL flavour a QApplication exists while they run, otherwise none. A missing
// display or a wrong context is a failure with one clear line, never a skip.
#include "System.h"
#include "TestEnvironment.h"

#include <gmock/gmock.h>

#include <QApplication>

#include <cstdio>

namespace {

int fail(const char *pWhat)
{
    std::fprintf(stderr, "Test set-up failed: %s\n", pWhat);
    return 3;
}

} // namespace

int main(int argc, char *argv[])
{
    xelttest::endOnFaults();
    testing::InitGoogleMock(&argc, argv);
    xelttest::hideConsole();
    const xelttest::GlFlavour flavour = xelttest::glFlavour();
    if (flavour == xelttest::GlFlavour::None) {
        return RUN_ALL_TESTS();
    }
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        return fail("DISPLAY is not set; these tests need an X display (xvfb-run -a gives one)");
    }
    xelttest::applySurfaceFormat(flavour);
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QString sProblem = xelttest::checkGl(flavour);
    if (!sProblem.isEmpty()) {
        return fail(qPrintable(sProblem));
    }
    return RUN_ALL_TESTS();
}
