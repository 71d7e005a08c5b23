#include "widget/FrameMutex.h"

#include <condition_variable>
#include <mutex>

struct FrameMutex::State
{
    std::mutex mutex;
    std::condition_variable changed;
    bool blLocked = false;
    bool blKept = false;      // locked, and nobody is there who would unlock it
    bool blWasKept = false;   // the holder has taken it over
    uint64_t nEndedHolds = 0; // how often it has ceased to be kept
};

FrameMutex::FrameMutex() : m_pState(std::make_shared<State>()) {}

FrameMutex::~FrameMutex()
{
    const std::lock_guard<std::mutex> guard(m_pState->mutex);
    ++m_pState->nEndedHolds;
    m_pState->changed.notify_all();
}

void FrameMutex::HeldUp::Wait() const
{
    std::unique_lock<std::mutex> lock(m_pState->mutex);
    m_pState->changed.wait(lock, [this] { return m_pState->nEndedHolds != m_nHold; });
}

void FrameMutex::lock()
{
    State &state = *m_pState;
    std::unique_lock<std::mutex> lock(state.mutex);
    state.changed.wait(lock, [&state] { return !state.blLocked; });
    state.blLocked = true;
}

bool FrameMutex::try_lock_for(std::chrono::milliseconds timeout)
{
    State &state = *m_pState;
    std::unique_lock<std::mutex> lock(state.mutex);
    if (!state.changed.wait_for(lock, timeout, [&state] { return !state.blLocked; })) {
        return false;
    }
    state.blLocked = true;
    return true;
}

void FrameMutex::unlock()
{
    State &state = *m_pState;
    const std::lock_guard<std::mutex> guard(state.mutex);
    if (state.blWasKept || state.blKept) {
        ++state.nEndedHolds;
    }
    state.blWasKept = false;
    state.blKept = false;
    state.blLocked = false;
    state.changed.notify_all();
}

bool FrameMutex::IsKept(HeldUp &heldUp) const
{
    const std::lock_guard<std::mutex> guard(m_pState->mutex);
    heldUp.m_pState = m_pState;
    heldUp.m_nHold = m_pState->nEndedHolds;
    return m_pState->blKept || m_pState->blWasKept;
}

bool FrameMutex::LockUnlessKept(HeldUp &heldUp)
{
    State &state = *m_pState;
    std::unique_lock<std::mutex> lock(state.mutex);
    heldUp.m_pState = m_pState;
    state.changed.wait(lock, [&state] { return !state.blLocked || state.blKept; });
    if (state.blKept) {
        heldUp.m_nHold = state.nEndedHolds;
        return false;
    }
    state.blLocked = true;
    return true;
}

void FrameMutex::Keep()
{
    State &state = *m_pState;
    const std::lock_guard<std::mutex> guard(state.mutex);
    state.blWasKept = false;
    state.blKept = true;
    state.changed.notify_all();
}

bool FrameMutex::TakeOver()
{
    State &state = *m_pState;
    std::unique_lock<std::mutex> lock(state.mutex);
    state.changed.wait(lock, [&state] { return !state.blLocked || state.blKept; });
    state.blWasKept = state.blKept;
    state.blKept = false;
    state.blLocked = true;
    return state.blWasKept;
}
