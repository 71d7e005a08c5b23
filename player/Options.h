#pragma once

#include "FrameLayout.h"
#include "PatternSource.h"

#include <XeltRender.h>

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

// How a pane shows its picture. What the keys and the mouse change starts from what the command line says.
struct ViewSettings
{
    int nAngle = 0; // degrees: 0, 90, 180, 270
    bool blCounterClockwise = false;
    int nMirror = 0; // 0 none, 1 left-right, 2 upside down
    bool blFill = false;
    XeltEZoomArea rcZoom{0.0, 0.0, 1.0, 1.0};
    std::optional<XeltDrawDstRect> rcDestination; // instead of blFill
};

struct Options
{
    QStringList astrFiles;                  // empty without a pattern: a test clip is made
    std::optional<PatternSettings> pattern; // instead of files
    int nPanes = 1;
    FrameLayout layout = FrameLayout::Yv12;
    bool blLoop = false;
    bool blFast = false;
    bool blOverlay = false;
    bool blDesktopGl = false;
    bool blSubImage = false;    // the renderer that updates its textures in place
    bool blLabelParent = false; // texts belong to the window instead of the panes
    std::optional<double> seconds;
    std::optional<qint64> frames; // for each pane
    std::optional<int> logLevel;
    ViewSettings view;
    QString strScreenshot;
    QSize size{1280, 720};
};

// The program ends with this instead of playing.
struct EarlyExit
{
    int nStatus = 0;
    QString strText; // for standard output with status 0, otherwise one line for standard error
};

constexpr int kStatusFailed = 1; // something could not be played or written
constexpr int kStatusUsage = 2;  // the command line asks for what there is not

// Needs a QCoreApplication, for the help text.
std::optional<EarlyExit> parseOptions(const QStringList &astrArguments, Options &options);
