#include "softd3d11/SoftEgl.h"

#include "softd3d11/egl/CallFaults.h"
#include "softd3d11/egl/EglBridge.h"
#include "softd3d11/egl/ExtensionString.h"

#include <dlfcn.h>

namespace softegl {

bool Active() noexcept
{
    // What a library sees that is loaded later, such as Qt's plug-ins.
    void *const pFound = dlsym(RTLD_DEFAULT, "eglCreatePbufferFromClientBuffer");
    Dl_info found{};
    Dl_info own{};
    return pFound != nullptr && dladdr(pFound, &found) != 0 &&
           dladdr(reinterpret_cast<const void *>(&Active), &own) != 0 && found.dli_fbase == own.dli_fbase;
}

void HideExtension(bool blHide) noexcept
{
    HideExtensionString(blHide);
}

std::uint64_t CallCount(Call call) noexcept
{
    return CallFaults::Instance().Count(call);
}

void ResetCallCounts() noexcept
{
    CallFaults::Instance().ResetCounts();
}

std::size_t CallsInOrder(Call *pCalls, std::size_t nCapacity) noexcept
{
    return CallFaults::Instance().InOrder(pCalls, nCapacity);
}

bool FailCall(Call call, std::int32_t nError, unsigned nNth, unsigned nTimes) noexcept
{
    return CallFaults::Instance().Fail(call, nError, nNth, nTimes);
}

void ClearFailures() noexcept
{
    CallFaults::Instance().Clear();
}

std::size_t LiveSurfaces() noexcept
{
    return EglBridge::Instance().LiveSurfaces();
}

std::size_t BoundTextures() noexcept
{
    return EglBridge::Instance().BoundTextures();
}

} // namespace softegl
