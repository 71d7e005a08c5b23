#pragma once

#include "DecodeThread.h"
#include "Options.h"
#include "OverlayFeeder.h"

#include <XeltRender.hpp>

#include <QLayout>
#include <QObject>
#include <QPoint>
#include <QRubberBand>
#include <QSize>

// One renderer with its decoding thread, and how the two are shown. Lives on the GUI thread.
class Pane : public QObject
{
    Q_OBJECT

public:
    // nNumber counts from 1. strSource names a file, unless the options say to play the pattern. Texts go onto pTextLayer, a widget over the whole window that outlives the pane,
    // or onto the pane itself when that is null. Check isValid() afterwards.
    Pane(int nNumber, const QString &strSource, const Options &options, QLayout *pLayout,
         QWidget *pTextLayer);

    // Ends decoding first, then the renderer.
    ~Pane() override;

    bool isValid() const { return static_cast<bool>(m_renderer); }
    QWidget *widget() const { return m_renderer.widget(); }

    void start();
    void stopDecoding();    // asks the thread to end
    void waitForDecoding(); // for its end, or at most a frame's time after stopDecoding()

    void turn(bool blBackwards);
    void changeMirror();
    void changeRatioMode();
    void showWhole();
    void toggleOverlay();
    // Stops drawing and keeps the last picture or not; when stopped already, goes on.
    void toggleStopped(bool blKeepPicture);

    // Only after waitForDecoding(). A problem goes behind the name of the source; empty: none.
    QString report() const;
    const QString &problem() const { return m_thread.problem(); }

    int number() const { return m_nNumber; }
    const QString &source() const { return m_strSource; }

Q_SIGNALS:
    void ended(); // there is nothing more to decode

protected:
    bool eventFilter(QObject *pWatched, QEvent *pEvent) override;

private:
    void placeTexts();
    void onPictureShown(int nWidth, int nHeight);
    void onResized();
    void place();
    void placePicture();
    bool onMouse(QEvent *pEvent);
    void beginDrag(const QPoint &position);
    void endDrag(const QPoint &position);

    const int m_nNumber;
    const QString m_strSource;
    ViewSettings m_view;
    xelt::Renderer m_renderer;
    OverlayFeeder m_feeder;
    DecodeThread m_thread;
    QRubberBand *m_pRubberBand = nullptr; // the pane widget's child
    QPoint m_dragStart;
    QSize m_picture; // empty until one is shown
    qint64 m_nPainted = 0;
    QWidget *const m_pTextLayer;
    bool m_blOverlay = false;
    bool m_blStopped = false;
};
