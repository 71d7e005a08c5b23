#include "interface/RendererRegistry.h"

#include "widget/InsideScope.h"

#include <chrono>
#include <utility>

std::unique_lock<QMutex> RendererEntry::Lock(Patience patience) const
{
    constexpr auto busyTimeout = std::chrono::milliseconds(500);
    if (patience == Patience::WithoutLimit && !InsideScope::IsInsideAny()) {
        return std::unique_lock<QMutex>(*pMutex);
    }
    return std::unique_lock<QMutex>(*pMutex, busyTimeout);
}

void RendererRegistry::Insert(void *handle, EntryPtr pEntry)
{
    m_mapEntries.insert_or_assign(handle, std::move(pEntry));
}

RendererRegistry::EntryPtr RendererRegistry::Remove(void *handle)
{
    const auto it = m_mapEntries.find(handle);
    if (it == m_mapEntries.end()) {
        return nullptr;
    }
    EntryPtr pEntry = std::move(it->second);
    m_mapEntries.erase(it);
    return pEntry;
}

RendererRegistry::EntryPtr RendererRegistry::Find(void *handle, int nTimeout)
{
    if (!m_lock.tryLockForRead(nTimeout)) {
        return nullptr;
    }
    const auto it = m_mapEntries.find(handle);
    EntryPtr pEntry = it != m_mapEntries.end() ? it->second : nullptr;
    m_lock.unlock();
    return pEntry;
}
