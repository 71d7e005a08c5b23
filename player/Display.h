#pragma once

#include <QPixmap>

class QWidget;

// Whether there is nothing to open a window on, as far as the environment tells before Qt tries.
bool isDisplayMissing();

// The window as the screen shows it; null where the system lets nobody look. GUI thread only.
QPixmap grabFromScreen(const QWidget &window);
