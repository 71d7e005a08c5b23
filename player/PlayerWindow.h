#pragma once

#include "HelpOverlay.h"
#include "Options.h"
#include "Pane.h"

#include <QGridLayout>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <set>
#include <vector>

// The window: a grid of panes, the keys, and the end of the run.
class PlayerWindow : public QWidget
{
    Q_OBJECT

public:
    // There must be a pattern or files in the options; panes take turns at the files.
    explicit PlayerWindow(const Options &options);
    ~PlayerWindow() override;

    // Shows the window and starts decoding; the application quits when the run is over. False, with a line
    // on standard error, when that cannot be.
    bool start();

    // After the application has quit: a line for each pane, and the exit status.
    int report() const;

protected:
    void keyPressEvent(QKeyEvent *pEvent) override;
    void resizeEvent(QResizeEvent *pEvent) override;
    void closeEvent(QCloseEvent *pEvent) override;

private:
    void addPane(int nIndex, QGridLayout *pGrid);
    void onPaneEnded(Pane &pane);
    void waitFor(Pane &pane);
    void finish();
    bool actOnPanes(int nKey, bool blShift);
    bool actOnWindow(int nKey);
    void forChosen(const std::function<void(Pane &)> &action);
    void choosePane(int nNumber);
    void toggleFullScreen();
    void showPending();
    void saveScreenshot(const QString &strFile);

    const Options m_options;
    std::vector<std::unique_ptr<Pane>> m_apPanes;
    QWidget *m_pTextLayer = nullptr; // the window's, over the panes; null where each carries its own texts
    HelpOverlay *m_pHelp;
    QTimer m_endTimer;
    std::set<int> m_setReported; // panes whose problem has been told
    int m_nRunning = 0;
    int m_nChosen = 0; // pane number; 0 all
    bool m_blFailed = false;
    bool m_blFinished = false;
};
