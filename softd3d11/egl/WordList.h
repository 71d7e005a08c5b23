#pragma once

#include <cstddef>
#include <cstring>

namespace softegl {

// Whether the word stands in a text of words with spaces between them. Null has no words.
inline bool HasWord(const char *pszText, const char *pszWord) noexcept
{
    const std::size_t nLength = std::strlen(pszWord);
    const char *psz = pszText;
    while (psz != nullptr && (psz = std::strstr(psz, pszWord)) != nullptr) {
        const bool blBegin = psz == pszText || psz[-1] == ' ';
        if (blBegin && (psz[nLength] == ' ' || psz[nLength] == '\0')) {
            return true;
        }
        psz += nLength;
    }
    return false;
}

} // namespace softegl
