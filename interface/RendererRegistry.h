#pragma once

#include <QMutex>
#include <QReadWriteLock>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

class CLS_ShaderBase;

// How long a call waits for a renderer that is busy.
enum class Patience { WithoutLimit, OfAFrame };

// What the registry, the calls and the widget's destruction know of one renderer. Whoever uses it holds a share in
// it, so that it outlives the renderer as long as somebody may still look at it.
struct RendererEntry
{
    // Locks the mutex. Frames wait for a limited time only, and so does every call from inside another renderer, as that
    // one may be waited for by the very call that is inside this one.
    std::unique_lock<QMutex> Lock(Patience patience) const;

    std::unique_ptr<QMutex> pMutex; // the renderer's mutex
    // Guarded by the mutex. Null once the renderer is released or its destruction has begun: a call that comes too
    // late is answered as for an unknown handle.
    CLS_ShaderBase *pRenderer = nullptr;
};

// Which handles are valid. The lock is never held while a renderer is called.
class RendererRegistry
{
public:
    using EntryPtr = std::shared_ptr<RendererEntry>;

    // Locked by the caller around Insert and Remove, since creation and release wait for it differently.
    QReadWriteLock &Lock() { return m_lock; }

    // Adds a handle, or replaces the entry of one that is there. Needs the write lock.
    void Insert(void *handle, EntryPtr pEntry);

    // Takes a handle out. Its entry, null when it is unknown. Needs the write lock.
    EntryPtr Remove(void *handle);

    // Entry of a handle, null when it is unknown. Takes the read lock, for which it waits at most nTimeout
    // ms; null on time-out.
    EntryPtr Find(void *handle, int nTimeout);

private:
    std::map<void *, EntryPtr, std::less<>> m_mapEntries;
    QReadWriteLock m_lock{QReadWriteLock::NonRecursive};
};
