#include "Display.h"

#include <QScreen>
#include <QWidget>

bool isDisplayMissing()
{
    return qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

QPixmap grabFromScreen(const QWidget &window)
{
    return window.screen()->grabWindow(window.winId());
}
