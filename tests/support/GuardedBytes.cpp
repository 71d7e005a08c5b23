#include "GuardedBytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>
#include <utility>

namespace xelttest {

GuardedBytes::GuardedBytes(size_t nSize) : m_nSize(nSize)
{
    const auto nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t nUsable = (nSize + nPage - 1) / nPage * nPage;
    m_nMapped = nUsable + nPage;
    m_pMapping = mmap(nullptr, m_nMapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m_pMapping == MAP_FAILED) {
        m_pMapping = nullptr;
        throw std::bad_alloc();
    }
    auto *pBase = static_cast<uint8_t *>(m_pMapping);
    if (mprotect(pBase + nUsable, nPage, PROT_NONE) != 0) {
        munmap(m_pMapping, m_nMapped);
        throw std::bad_alloc();
    }
    m_pData = pBase + nUsable - nSize;
}

GuardedBytes::~GuardedBytes()
{
    if (m_pMapping != nullptr) {
        munmap(m_pMapping, m_nMapped);
    }
}

GuardedBytes::GuardedBytes(GuardedBytes &&other) noexcept
{
    *this = std::move(other);
}

GuardedBytes &GuardedBytes::operator=(GuardedBytes &&other) noexcept
{
    std::swap(m_pMapping, other.m_pMapping);
    std::swap(m_nMapped, other.m_nMapped);
    std::swap(m_pData, other.m_pData);
    std::swap(m_nSize, other.m_nSize);
    return *this;
}

} // namespace xelttest
