#include "GuardedBytes.h"

#include "System.h"

#include <utility>

namespace xelttest {

GuardedBytes::GuardedBytes(size_t nSize) : m_nSize(nSize)
{
    m_pMemory = allocateGuarded(nSize, m_nUsable);
    m_pData = static_cast<uint8_t *>(m_pMemory) + m_nUsable - nSize;
}

GuardedBytes::~GuardedBytes()
{
    if (m_pMemory != nullptr) {
        freeGuarded(m_pMemory, m_nUsable);
    }
}

GuardedBytes::GuardedBytes(GuardedBytes &&other) noexcept
{
    *this = std::move(other);
}

GuardedBytes &GuardedBytes::operator=(GuardedBytes &&other) noexcept
{
    std::swap(m_pMemory, other.m_pMemory);
    std::swap(m_nUsable, other.m_nUsable);
    std::swap(m_pData, other.m_pData);
    std::swap(m_nSize, other.m_nSize);
    return *this;
}

} // namespace xelttest
