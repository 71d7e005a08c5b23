#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

// The mutex of a renderer's frame state. Beside what every mutex does, its holder may keep it: it stays locked,
// and nobody holds it, until somebody who ends the picture takes it over. Any thread.
class FrameMutex
{
    struct State;

public:
    // Somebody who came while the mutex was kept. It outlives the mutex.
    class HeldUp
    {
    public:
        // Waits until the mutex is not kept any more, or destroyed.
        void Wait() const;

    private:
        friend class FrameMutex;
        std::shared_ptr<State> m_pState;
        uint64_t m_nHold = 0;
    };

    FrameMutex();
    ~FrameMutex();
    FrameMutex(const FrameMutex &) = delete;
    FrameMutex &operator=(const FrameMutex &) = delete;

    // As for a standard mutex. One that is kept is locked for all of these.
    void lock();
    bool try_lock() { return try_lock_for(std::chrono::milliseconds(0)); }
    bool try_lock_for(std::chrono::milliseconds timeout);
    void unlock();

    // Whether it is kept now; heldUp is then somebody who came.
    bool IsKept(HeldUp &heldUp) const;
    // Locks, and waits for it. False at once, with heldUp set, when the mutex is kept or becomes so meanwhile.
    bool LockUnlessKept(HeldUp &heldUp);
    // In place of unlock().
    void Keep();
    // Locks, and waits for it, but takes a kept mutex over at once. True when it was kept: unlock() then ends that,
    // and Keep() goes on with it.
    bool TakeOver();

private:
    const std::shared_ptr<State> m_pState;
};

// Takes the mutex over while it lives and ends it being kept.
class FrameEnding
{
public:
    explicit FrameEnding(FrameMutex &mutex) : m_mutex(mutex) { m_mutex.TakeOver(); }
    ~FrameEnding() { m_mutex.unlock(); }
    FrameEnding(const FrameEnding &) = delete;
    FrameEnding &operator=(const FrameEnding &) = delete;

private:
    FrameMutex &m_mutex;
};

// Takes the mutex over while it lives and leaves it kept where it was. Null is ignored.
class FrameBorrowing
{
public:
    explicit FrameBorrowing(FrameMutex *pMutex)
        : m_pMutex(pMutex), m_blKept(pMutex != nullptr && pMutex->TakeOver())
    {
    }
    ~FrameBorrowing()
    {
        if (m_blKept) {
            m_pMutex->Keep();
        } else if (m_pMutex != nullptr) {
            m_pMutex->unlock();
        }
    }
    FrameBorrowing(const FrameBorrowing &) = delete;
    FrameBorrowing &operator=(const FrameBorrowing &) = delete;

private:
    FrameMutex *const m_pMutex;
    const bool m_blKept;
};
