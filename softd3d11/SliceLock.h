#pragma once

#include "softd3d11/TextureStorage.h"

#include <mutex>

namespace softd3d11 {

// Holds the mutexes of two slices, which may be the same one.
class SliceLock
{
public:
    SliceLock(const TextureStorage &one, UINT nOneSlice, const TextureStorage &other, UINT nOtherSlice)
        : m_one(one.SliceMutex(nOneSlice), std::defer_lock),
          m_other(other.SliceMutex(nOtherSlice), std::defer_lock)
    {
        if (m_one.mutex() == m_other.mutex()) {
            m_one.lock();
        } else {
            std::lock(m_one, m_other); // in whatever order, so that two of these never wait for each other
        }
    }

private:
    std::unique_lock<std::mutex> m_one;
    std::unique_lock<std::mutex> m_other;
};

} // namespace softd3d11
