// Memory whose last byte is followed by an unreadable page: a read past the end ends the test at once, with
// or without a sanitizer.
#pragma once

#include <cstddef>
#include <cstdint>

namespace xelttest {

class GuardedBytes
{
public:
    GuardedBytes() = default;
    // nSize zeroed bytes; a size of 0 gives an address that must not be read at all.
    explicit GuardedBytes(size_t nSize);
    ~GuardedBytes();
    GuardedBytes(GuardedBytes &&other) noexcept;
    GuardedBytes &operator=(GuardedBytes &&other) noexcept;
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;

    uint8_t *data() const { return m_pData; }
    size_t size() const { return m_nSize; }
    uint8_t &operator[](size_t nIndex) const { return m_pData[nIndex]; }

private:
    void *m_pMemory = nullptr;
    size_t m_nUsable = 0; // bytes before the unreadable page
    uint8_t *m_pData = nullptr;
    size_t m_nSize = 0;
};

} // namespace xelttest
