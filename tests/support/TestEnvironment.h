// What the CTest entry asked for: GL flavour, scale, renderer, artifact folder. Read from XELT_TEST_GL (es,
// desktop or none), XELT_TEST_SCALE, XELT_TEST_RENDERER and XELT_TEST_ARTIFACTS.
#pragma once

#include <QByteArray>
#include <QString>

namespace xelttest {

enum class GlFlavour { None, Es, Desktop };

// GlFlavour::None when the variable is missing or "none".
GlFlavour glFlavour();
int scaleFactor();
// Type code of the panes that tests make without naming one; 0 when the variable is missing.
int rendererType();
// The folder for pictures of failed comparisons; made when missing.
QString artifactDir();

// Whether the line is one that Qt writes in every program on this display, and says nothing about the one that runs:
// it begins as XELT_TEST_NOISE says.
bool isDisplaysNoise(const QByteArray &abLine);

// Sets the default surface format for the flavour. Call before the QApplication is made.
void applySurfaceFormat(GlFlavour flavour);
// Empty when a context of the flavour is to be had, otherwise one line that says what is wrong. Needs a
// QGuiApplication; GUI thread.
QString checkGl(GlFlavour flavour);

} // namespace xelttest
