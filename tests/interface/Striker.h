// A host that does all it can from events, from a widget's painting and from Qt's message handler.
#pragma once

#include "EveryCall.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QChildEvent>
#include <QLoggingCategory>
#include <QThread>
#include <QWidget>

#include <atomic>
#include <map>
#include <utility>

namespace xelttest {

// Does all that a host can do, a limited number of times, and never from inside itself.
class Striker
{
public:
    void arm(void *pane, void *neighbour, const HostFrame &frame)
    {
        m_pane = pane;
        m_neighbour = neighbour;
        m_pFrame = &frame;
        m_blArmed = true;
    }
    void disarm() { m_blArmed = false; }
    int strikes() const { return m_nStrikes; }

    void strike()
    {
        static thread_local bool t_blInside = false;
        if (!m_blArmed || t_blInside) {
            return;
        }
        t_blInside = true;
        ++m_nStrikes;
        EXPECT_TRUE(callEverything(m_neighbour, *m_pFrame).areResults());
        EXPECT_TRUE(callEverything(m_pane, *m_pFrame).areResults());
        EXPECT_TRUE(createAndRelease(QThread::currentThread() == qApp->thread()));
        // What the clear has ended goes on.
        EXPECT_LE(show(m_pane, *m_pFrame), 0);
        t_blInside = false;
    }

private:
    std::atomic<bool> m_blArmed{false};
    std::atomic<int> m_nStrikes{0};
    void *m_pane = nullptr;
    void *m_neighbour = nullptr;
    const HostFrame *m_pFrame = nullptr;
};

// Strikes at the first few events of every type, those of labels from their making on.
class StrikingFilter : public QObject
{
public:
    StrikingFilter(Striker &striker, bool blLabels) : m_striker(striker), m_blLabels(blLabels) {}

protected:
    bool eventFilter(QObject *pObject, QEvent *pEvent) override
    {
        if (m_blLabels && pEvent->type() == QEvent::ChildAdded) {
            static_cast<QChildEvent *>(pEvent)->child()->installEventFilter(this);
        }
        constexpr int k_nOfEach = 3;
        const bool blCounts =
            !m_blLabels || !pObject->isWidgetType() || !static_cast<QWidget *>(pObject)->isWindow();
        if (blCounts && ++m_mapSeen[{pObject, pEvent->type()}] <= k_nOfEach) {
            m_striker.strike();
        }
        return false;
    }

private:
    Striker &m_striker;
    const bool m_blLabels; // of the window that it is on, and not the window itself
    std::map<std::pair<QObject *, QEvent::Type>, int> m_mapSeen;
};

// A window that labels are put on.
class StrikingWindow : public QWidget
{
public:
    Striker *m_pStriker = nullptr; // null: paints as others do

protected:
    void paintEvent(QPaintEvent *) override
    {
        constexpr int k_nStrikes = 12;
        if (m_pStriker != nullptr && m_nPaints++ < k_nStrikes) {
            m_pStriker->strike();
        }
    }

private:
    int m_nPaints = 0;
};

// Strikes at the library's own messages.
class MessageStriker
{
public:
    explicit MessageStriker(Striker &striker)
    {
        s_pStriker = &striker;
        s_blDebugBefore = QLoggingCategory::defaultCategory()->isDebugEnabled();
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
        s_pfnBefore = qInstallMessageHandler(&MessageStriker::handle);
    }
    ~MessageStriker()
    {
        qInstallMessageHandler(s_pfnBefore);
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, s_blDebugBefore);
    }
    MessageStriker(const MessageStriker &) = delete;
    MessageStriker &operator=(const MessageStriker &) = delete;

private:
    static void handle(QtMsgType type, const QMessageLogContext &, const QString &)
    {
        constexpr int k_nStrikes = 40;
        if (type == QtDebugMsg && s_pStriker->strikes() < k_nStrikes) {
            s_pStriker->strike();
        }
    }

    static inline Striker *s_pStriker = nullptr;
    static inline QtMessageHandler s_pfnBefore = nullptr;
    static inline bool s_blDebugBefore = false;
};

} // namespace xelttest
