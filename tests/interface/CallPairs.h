// A pane with one call held inside it, and all calls by their names.
#pragma once

#include "Background.h"
#include "CoreLog.h"
#include "Decoders.h"
#include "HangWatchdog.h"
#include "HostWindow.h"

#include <gtest/gtest.h>

#include <QPointer>
#include <QVBoxLayout>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

namespace xelttest {

enum class Call { Show, Set, Get, GetWindow, Clear, Release, Resize, Destroy };

inline const char *nameOf(Call call)
{
    static const char *const k_apNames[] = {"Show",  "Set",     "Get",    "GetWindow",
                                            "Clear", "Release", "Resize", "Destroy"};
    return k_apNames[static_cast<size_t>(call)];
}

inline bool endsThePane(Call call)
{
    return call == Call::Release || call == Call::Destroy;
}

// Where the first to pass is held until it is opened.
class Gate
{
public:
    void pass()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (m_blEntered) {
            return;
        }
        m_blEntered = true;
        m_changed.notify_all();
        m_changed.wait_for(lock, k_limit, [this] { return m_blOpen; });
    }
    bool waitForEntry()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, k_limit, [this] { return m_blEntered; });
    }
    void open()
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_blOpen = true;
        m_changed.notify_all();
    }

private:
    static constexpr std::chrono::seconds k_limit{20};

    std::mutex m_mutex; // guards both
    std::condition_variable m_changed;
    bool m_blEntered = false;
    bool m_blOpen = false;
};

// What a started call needs until it waits. Too short on a busy machine, the test sees less but nothing wrong.
inline void letItBegin()
{
    std::this_thread::sleep_for(Milliseconds(25));
}

class CallPairs : public testing::Test
{
protected:
    void open(int32_t nType)
    {
        CoreLog::instance().reset();
        m_pWindow = std::make_unique<QWidget>();
        m_handle = Xelt_CreateEx(&nType, sizeof nType);
        ASSERT_NE(m_handle, nullptr);
        m_pPane = paneWidget(m_handle);
        auto *pLayout = new QVBoxLayout(m_pWindow.get());
        pLayout->addWidget(m_pPane);
        m_pWindow->resize(96, 80);
        m_pWindow->show();
        ASSERT_TRUE(pump([this] { return m_pPane->isValid(); }));
        drainEvents();
    }
    void TearDown() override
    {
        m_gate.open();
        CoreLog::instance().setHook(nullptr);
        Xelt_Release(m_handle);
        EXPECT_TRUE(pump([this] { return m_pPane.isNull(); }));
    }

    // Has the call held inside the renderer, as soon as it is made.
    void holdAt(Call call)
    {
        if (call == Call::Show || call == Call::Resize) {
            ASSERT_EQ(setDrawInfoCallback(m_handle, &CallPairs::passGate, &m_gate), 0);
        } else if (call != Call::GetWindow) { // which this thread holds
            const std::string sLine = call == Call::Set     ? "XELTCMD_SET_STOPDRAW_PARA"
                                      : call == Call::Clear ? "::ClearDraw, blReserveLastFrm"
                                                            : "[Xelt_Release] pcls";
            CoreLog::instance().setHook([this, sLine](const CoreLogRecord &record) {
                if (record.sText.find(sLine) != std::string::npos) {
                    m_gate.pass();
                }
            });
        }
    }
    static int32_t passGate(void *, const XeltDrawInfoRequest *, int32_t, void *pUser)
    {
        static_cast<Gate *>(pUser)->pass();
        return 0;
    }
    int32_t make(Call call)
    {
        XeltWidgetRect rect{};
        uint64_t hWindow = 0;
        switch (call) {
        case Call::Show:
            return show(m_handle, m_frame);
        case Call::Set:
            return setReserveLastFrame(m_handle, 0);
        case Call::Get:
            return Xelt_GetParam(m_handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect);
        case Call::GetWindow:
            return Xelt_GetParam(m_handle, XELTCMD_GET_WINID, &hWindow, sizeof hWindow);
        case Call::Clear:
            Xelt_ClearDraw(m_handle);
            return 0;
        case Call::Release:
            return Xelt_Release(m_handle);
        case Call::Resize:
            m_pPane->resize(m_pPane->size() + QSize(10, 10));
            return 0;
        default:
            m_pWindow.reset();
            return 0;
        }
    }
    // Makes it on another thread, or here where that is its place.
    void start(Call call, std::unique_ptr<Background> &pCall)
    {
        if (call == Call::Destroy) {
            make(call);
        } else {
            pCall = std::make_unique<Background>([this, call] { return make(call); });
        }
    }
    void startFirst(Call call, std::unique_ptr<Background> &pCall)
    {
        start(call, pCall);
        if (call != Call::GetWindow) {
            EXPECT_TRUE(m_gate.waitForEntry());
        } else {
            letItBegin();
        }
    }
    // When it ends, with the event loop running.
    static Timed end(Background &call)
    {
        EXPECT_TRUE(pump([&] { return call.isDone(); })) << "does not come back";
        return call.join();
    }
    void expectState(bool blEnded)
    {
        CoreLog::instance().setHook(nullptr);
        if (!blEnded) {
            EXPECT_TRUE(pushFinalPicture(m_handle));
            EXPECT_TRUE(showsFinalPicture(m_handle));
            return;
        }
        for (const Call call : {Call::Show, Call::Set, Call::Get, Call::GetWindow}) {
            EXPECT_EQ(make(call), -1) << nameOf(call);
        }
        EXPECT_EQ(make(Call::Release), 0);
        EXPECT_TRUE(pump([this] { return m_pPane.isNull(); }));
    }

    const HangWatchdog m_watchdog;
    const HostFrame m_frame = yv12Frame(solidPlanes(32, 24, 90, 128, 128));
    Gate m_gate;
    std::unique_ptr<QWidget> m_pWindow;
    QPointer<QOpenGLWidget> m_pPane;
    void *m_handle = nullptr;
};

} // namespace xelttest
