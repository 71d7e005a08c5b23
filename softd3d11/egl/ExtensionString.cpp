#include "softd3d11/egl/ExtensionString.h"

#include "softd3d11/egl/WordList.h"

#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace softegl {
namespace {

std::atomic<bool> s_blHidden{false};

} // namespace

const char *WithExtension(const char *pszExtensions)
{
    constexpr char szName[] = "EGL_ANGLE_d3d_share_handle_client_buffer";
    if (s_blHidden || HasWord(pszExtensions, szName)) {
        return pszExtensions;
    }
    std::string strText = pszExtensions;
    if (!strText.empty() && strText.back() != ' ') {
        strText += ' ';
    }
    strText += szName;

    // Never destroyed: callers keep the pointers.
    static std::mutex &s_mutex = *new std::mutex;
    static std::set<std::string> &s_texts = *new std::set<std::string>;
    const std::lock_guard<std::mutex> lock(s_mutex);
    return s_texts.insert(std::move(strText)).first->c_str();
}

void HideExtensionString(bool blHide) noexcept
{
    s_blHidden = blHide;
}

bool IsExtensionHidden() noexcept
{
    return s_blHidden;
}

} // namespace softegl
