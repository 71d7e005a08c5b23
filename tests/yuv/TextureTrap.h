// Counts the texture objects that this thread makes, and can fail one of them.
#pragma once

#include "AllocationTrap.h"

#include <QOpenGLTexture>

#include <climits>
#include <memory>
#include <vector>

namespace xelttest {

class TextureTrap
{
public:
    // Lets nGood texture objects be made and fails the next one.
    explicit TextureTrap(int nGood = INT_MAX) : m_nGood(nGood) { arm(); }
    TextureTrap(const TextureTrap &) = delete;
    TextureTrap &operator=(const TextureTrap &) = delete;

    int made() const { return m_nMade; }
    bool hasFailed() const { return m_blFailed; }

private:
    void arm()
    {
        m_vecTraps.push_back(std::make_unique<AllocationTrap>(
            AllocationTrap::Form::NoThrow, sizeof(QOpenGLTexture), sizeof(QOpenGLTexture), [this] {
                m_blFailed = m_nMade == m_nGood;
                if (!m_blFailed) {
                    ++m_nMade;
                    arm();
                }
                return !m_blFailed;
            }));
    }

    const int m_nGood;
    int m_nMade = 0;
    bool m_blFailed = false;
    std::vector<std::unique_ptr<AllocationTrap>> m_vecTraps;
};

} // namespace xelttest
