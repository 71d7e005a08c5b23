// A host window as a player would have it: a top-level widget with a layout that takes panes.
#pragma once

#include "TestEnvironment.h"
#include "XeltRender.h"

#include <QImage>
#include <QOpenGLWidget>
#include <QSize>
#include <QWidget>

#include <functional>
#include <map>
#include <vector>

class QGridLayout;

namespace xelttest {

constexpr int k_nPumpTimeoutMs = 10000;

// Runs the event loop (deferred deletions included) until the condition holds; false after the time-out. The
// condition is asked after every batch of events and at least every few milliseconds. GUI thread.
bool pump(const std::function<bool()> &condition, int nTimeoutMs = k_nPumpTimeoutMs);
// Runs the event loop until it has nothing to do: what was posted or scheduled for deletion has happened.
void drainEvents();

// The handle's value is the widget's address.
QOpenGLWidget *paneWidget(void *handle);
// Paints the pane now and returns its own pixels (width and height times the device pixel ratio), top row
// first, in one of the 32-bit RGB formats. The colour bytes are to be read raw: the alpha channel is not part
// of the picture. GUI thread.
QImage grab(void *handle);

enum class Creator { Create, CreateEx };
// Create for renderer type 0, which it always makes, CreateEx for every other.
Creator defaultCreator();

class HostWindow : public QWidget
{
    Q_OBJECT

public:
    // Shows nCount panes of exactly the given size in a grid and waits until each is exposed and painted.
    explicit HostWindow(const QSize &paneSize = QSize(320, 240), int nCount = 1,
                        Creator creator = defaultCreator(), int32_t nTypeCode = rendererType());
    // An empty window; nothing is shown.
    explicit HostWindow(std::nullptr_t);
    // Releases the panes that are left.
    ~HostWindow() override;

    // Adds one pane; null when creation failed. It takes part in release().
    void *addPane(const QSize &paneSize, Creator creator = defaultCreator(),
                  int32_t nTypeCode = rendererType());
    // Moves a pane from the window that has it into this window's layout, as a host that undocks a pane.
    void adopt(void *handle);
    // Shows the window and waits until the panes are exposed and painted; false on time-out.
    bool showAndWait();
    // Sets the exact size of a pane and waits until it has it.
    bool resizePane(void *handle, const QSize &size);
    // Xelt_Release of one pane, and waits until the widget is destroyed. Returns the call's result.
    int32_t release(void *handle);
    // The same, with the library's call on a thread of its own.
    int32_t releaseOnThread(void *handle);
    void releaseAll();

    void *pane(int nIndex = 0) const { return m_vecPanes.at(static_cast<size_t>(nIndex)); }
    const std::vector<void *> &panes() const { return m_vecPanes; }
    QGridLayout *hostLayout() const { return m_pLayout; }

    // Paint events that the pane got since it was added or adopted here.
    int paints(void *handle) const;
    // Waits for at least one paint more than nBefore.
    bool waitForPaint(void *handle, int nBefore);

protected:
    bool eventFilter(QObject *pObject, QEvent *pEvent) override;

private:
    void place(QWidget *pWidget);
    void forget(void *handle);
    bool painted() const;

    QGridLayout *m_pLayout;
    std::vector<void *> m_vecPanes;
    std::map<const QObject *, int> m_mapPaints;
    int m_nPlaced = 0;
};

// Shorthands for the parameter commands, with the right record sizes.
int32_t setRotation(void *handle, int nAngle, int nDirection = 0, int nMirror = 0);
int32_t setZoom(void *handle, double left, double top, double right, double bottom);
int32_t setRatioMode(void *handle, int nMode);
int32_t setDstRect(void *handle, int left, int top, int right, int bottom);
int32_t setReserveLastFrame(void *handle, int nReserve);
int32_t setDrawInfoCallback(void *handle, XeltDrawInfoCallback pfnCallback, void *pUser);

} // namespace xelttest
