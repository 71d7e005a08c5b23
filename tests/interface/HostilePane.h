// Panes in windows of the host's own, for both renderers, with an end to tests that hang.
#pragma once

#include "CoreLog.h"
#include "Decoders.h"
#include "HangWatchdog.h"
#include "HostWindow.h"
#include "LabelTest.h"

#include <gtest/gtest.h>

#include <QHBoxLayout>
#include <QPointer>

#include <map>

namespace xelttest {

class HostilePane : public testing::TestWithParam<int32_t>
{
protected:
    void SetUp() override { CoreLog::instance().reset(); }
    // Releases the panes that are left.
    void TearDown() override
    {
        while (!m_mapPanes.empty()) {
            release(m_mapPanes.begin()->first);
        }
        drainEvents();
    }

    // Null where the window has no layout for it: then the pane has no parent.
    void *addPane(QLayout *pLayout = nullptr)
    {
        const int32_t nType = GetParam();
        void *handle = Xelt_CreateEx(&nType, sizeof nType);
        m_mapPanes[handle] = paneWidget(handle);
        if (pLayout != nullptr) {
            pLayout->addWidget(paneWidget(handle));
        }
        return handle;
    }
    // Shows a window and waits until the pane has painted.
    static bool showWindow(QWidget &window, void *handle, const QSize &size = QSize(320, 120))
    {
        EventCounter paints({QEvent::Paint});
        paints.watch(paneWidget(handle));
        window.resize(size);
        window.show();
        const bool blPainted = pump([&] { return paints.count() > 0; });
        drainEvents();
        return blPainted;
    }
    int32_t release(void *handle)
    {
        const int32_t nResult = Xelt_Release(handle);
        EXPECT_TRUE(goes(handle));
        return nResult;
    }
    // Whether the event loop destroys the pane's widget.
    bool goes(void *handle)
    {
        const QPointer<QWidget> pWidget = m_mapPanes.at(handle);
        m_mapPanes.erase(handle);
        return pump([&] { return pWidget.isNull(); });
    }
    // Whether the pane shows a frame as if nothing had happened.
    static testing::AssertionResult playsOn(void *handle)
    {
        drainEvents(); // a placement counts for the size that the pane has when it is set
        const auto pushed = pushFinalPicture(handle);
        return pushed ? showsFinalPicture(handle) : pushed;
    }

    const HangWatchdog m_watchdog;
    const HostFrame m_frame = yv12Frame(solidPlanes(32, 24, 90, 128, 128));

private:
    std::map<void *, QPointer<QWidget>> m_mapPanes;
};

} // namespace xelttest
