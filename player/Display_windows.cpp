#include "Display.h"

#include <QScreen>
#include <QWidget>

bool isDisplayMissing()
{
    return false;
}

// A window that Direct3D or OpenGL presents is black to those who read it by itself; the desktop has it. Asked
// for a part that sticks out of the screen, some systems answer with nothing.
QPixmap grabFromScreen(const QWidget &window)
{
    const QPixmap desktop = window.screen()->grabWindow(0);
    const double scale = desktop.devicePixelRatio();
    const QPoint origin = window.mapToGlobal(QPoint(0, 0)) - window.screen()->geometry().topLeft();
    return desktop.copy(QRect(origin * scale, window.size() * scale));
}
