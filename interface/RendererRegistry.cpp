#include "interface/RendererRegistry.h"

void RendererRegistry::Insert(void *handle, QMutex *pMutex)
{
    m_mapMutexes.insert_or_assign(handle, pMutex);
}

QMutex *RendererRegistry::Remove(void *handle)
{
    const auto it = m_mapMutexes.find(handle);
    if (it == m_mapMutexes.end()) {
        return nullptr;
    }
    QMutex *pMutex = it->second;
    m_mapMutexes.erase(it);
    return pMutex;
}

QMutex *RendererRegistry::Find(void *handle, int nTimeout)
{
    if (!m_lock.tryLockForRead(nTimeout)) {
        return nullptr;
    }
    const auto it = m_mapMutexes.find(handle);
    QMutex *pMutex = it != m_mapMutexes.end() ? it->second : nullptr;
    m_lock.unlock();
    return pMutex;
}
