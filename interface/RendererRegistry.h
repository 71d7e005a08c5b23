#pragma once

#include <QReadWriteLock>
#include <functional>
#include <map>

class QMutex;

// Which handles are valid, and the mutex of each. It owns neither the renderers nor the mutexes. The lock is
// never held while a renderer is called.
class RendererRegistry
{
public:
    // Locked by the caller around Insert and Remove, since creation and release wait for it differently.
    QReadWriteLock &Lock() { return m_lock; }

    // Adds a handle, or replaces the mutex of one that is there. Needs the write lock.
    void Insert(void *handle, QMutex *pMutex);

    // Takes a handle out. Its mutex, null when it is unknown. Needs the write lock.
    QMutex *Remove(void *handle);

    // Mutex of a handle, null when it is unknown. Takes the read lock, for which it waits at most nTimeout
    // ms; null on time-out.
    QMutex *Find(void *handle, int nTimeout);

private:
    std::map<void *, QMutex *, std::less<>> m_mapMutexes;
    QReadWriteLock m_lock{QReadWriteLock::NonRecursive};
};
