#pragma once

#include <QLabel>

// The list of keys, over the panes.
class HelpOverlay : public QLabel
{
    Q_OBJECT

public:
    explicit HelpOverlay(QWidget *pParent);

    void toggle();
};
