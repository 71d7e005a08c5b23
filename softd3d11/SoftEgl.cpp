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
