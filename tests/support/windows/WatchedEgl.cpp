// softd3d11/SoftEgl.h on ANGLE: the library under test looks its EGL functions up by name, and is given these,
// which count, fail on demand, and otherwise pass the call on.
#include "windows/WatchedEgl.h"
#include "LookupHook.h"
#include "windows/AngleDevice.h"

#include "softd3d11/SoftEgl.h"
#include "softd3d11/egl/CallFaults.h"
#include "softd3d11/egl/WatchedCode.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace softegl {

// All that comes here was looked up by the library under test.
bool IsWatched(const void * /*pAddress*/) noexcept
{
    return true;
}

namespace {

constexpr char k_szExtension[] = "EGL_ANGLE_d3d_share_handle_client_buffer";

EglFunctions g_real{};
std::atomic<bool> g_blHidden{false};
thread_local EGLint t_nInjected = EGL_SUCCESS;

struct Surfaces
{
    std::mutex mutex;
    std::set<EGLSurface> living;
    std::set<EGLSurface> bound;
    std::vector<std::pair<EGLDisplay, EGLSurface>> lost; // that could not be destroyed
    size_t nLost = 0;                                    // so far

    static Surfaces &instance()
    {
        static Surfaces &surfaces = *new Surfaces;
        return surfaces;
    }
};

// Whether the call is to fail; the error is left for eglGetError.
bool fails(Call call)
{
    const auto error = CallFaults::Instance().Arrive(call, nullptr);
    t_nInjected = error.value_or(EGL_SUCCESS);
    return error.has_value();
}

EGLBoolean EGLAPIENTRY onBindApi(EGLenum nApi)
{
    return fails(Call::BindApi) ? EGL_FALSE : g_real.pfnBindApi(nApi);
}

EGLint EGLAPIENTRY onGetError()
{
    const EGLint nReal = g_real.pfnGetError();
    return t_nInjected != EGL_SUCCESS ? std::exchange(t_nInjected, EGL_SUCCESS) : nReal;
}

EGLDisplay EGLAPIENTRY onGetCurrentDisplay()
{
    const EGLint nBefore = t_nInjected; // asked between an error and the question for it
    if (fails(Call::GetCurrentDisplay)) {
        return EGL_NO_DISPLAY;
    }
    t_nInjected = nBefore;
    return g_real.pfnGetCurrentDisplay();
}

EGLBoolean EGLAPIENTRY onReleaseThread()
{
    return fails(Call::ReleaseThread) ? EGL_FALSE : g_real.pfnReleaseThread();
}

EGLBoolean EGLAPIENTRY onMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context)
{
    return fails(Call::MakeCurrent) ? EGL_FALSE : g_real.pfnMakeCurrent(display, draw, read, context);
}

const char *EGLAPIENTRY onQueryString(EGLDisplay display, EGLint nName)
{
    if (fails(Call::QueryString)) {
        return nullptr;
    }
    const char *pszText = g_real.pfnQueryString(display, nName);
    if (pszText == nullptr || nName != EGL_EXTENSIONS || !g_blHidden) {
        return pszText;
    }
    static std::string &s_sWithout = *new std::string;
    s_sWithout = pszText;
    const size_t nPlace = s_sWithout.find(k_szExtension);
    if (nPlace != std::string::npos) {
        s_sWithout.erase(nPlace, sizeof k_szExtension - 1);
    }
    return s_sWithout.c_str();
}

EGLBoolean EGLAPIENTRY onChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs,
                                      EGLint nSize, EGLint *pCount)
{
    return fails(Call::ChooseConfig) ? EGL_FALSE
                                     : g_real.pfnChooseConfig(display, pAttributes, pConfigs, nSize, pCount);
}

EGLSurface EGLAPIENTRY onCreate(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer, EGLConfig config,
                                const EGLint *pAttributes)
{
    if (fails(Call::CreatePbufferFromClientBuffer)) {
        return EGL_NO_SURFACE;
    }
    const EGLSurface surface = g_real.pfnCreate(display, nType, buffer, config, pAttributes);
    if (surface != EGL_NO_SURFACE) {
        Surfaces &surfaces = Surfaces::instance();
        const std::lock_guard<std::mutex> lock(surfaces.mutex);
        surfaces.living.insert(surface);
    }
    return surface;
}

EGLBoolean EGLAPIENTRY onDestroySurface(EGLDisplay display, EGLSurface surface)
{
    const bool blFails = fails(Call::DestroySurface);
    Surfaces &surfaces = Surfaces::instance();
    const std::lock_guard<std::mutex> lock(surfaces.mutex);
    if (blFails) {
        surfaces.living.erase(surface);
        surfaces.lost.emplace_back(display, surface);
        ++surfaces.nLost;
        return EGL_FALSE;
    }
    const EGLBoolean blDone = g_real.pfnDestroySurface(display, surface);
    if (blDone == EGL_TRUE) {
        surfaces.living.erase(surface);
    }
    return blDone;
}

EGLBoolean EGLAPIENTRY onBindTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer)
{
    if (fails(Call::BindTexImage) || g_real.pfnBindTexImage(display, surface, nBuffer) == EGL_FALSE) {
        return EGL_FALSE;
    }
    Surfaces &surfaces = Surfaces::instance();
    const std::lock_guard<std::mutex> lock(surfaces.mutex);
    surfaces.bound.insert(surface);
    return EGL_TRUE;
}

EGLBoolean EGLAPIENTRY onReleaseTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer)
{
    if (fails(Call::ReleaseTexImage)) {
        return EGL_FALSE;
    }
    const EGLBoolean blDone = g_real.pfnReleaseTexImage(display, surface, nBuffer);
    if (blDone == EGL_TRUE) {
        Surfaces &surfaces = Surfaces::instance();
        const std::lock_guard<std::mutex> lock(surfaces.mutex);
        surfaces.bound.erase(surface);
    }
    return blDone;
}

FARPROC watched(const char *pszName, FARPROC pfnFound)
{
    using xelttest::replaceFound;
    const std::string sName = pszName;
    // clang-format off
    if (sName == "eglBindAPI") return replaceFound(pfnFound, g_real.pfnBindApi, &onBindApi);
    if (sName == "eglGetError") return replaceFound(pfnFound, g_real.pfnGetError, &onGetError);
    if (sName == "eglGetCurrentDisplay") return replaceFound(pfnFound, g_real.pfnGetCurrentDisplay, &onGetCurrentDisplay);
    if (sName == "eglReleaseThread") return replaceFound(pfnFound, g_real.pfnReleaseThread, &onReleaseThread);
    if (sName == "eglMakeCurrent") return replaceFound(pfnFound, g_real.pfnMakeCurrent, &onMakeCurrent);
    if (sName == "eglQueryString") return replaceFound(pfnFound, g_real.pfnQueryString, &onQueryString);
    if (sName == "eglChooseConfig") return replaceFound(pfnFound, g_real.pfnChooseConfig, &onChooseConfig);
    if (sName == "eglCreatePbufferFromClientBuffer") return replaceFound(pfnFound, g_real.pfnCreate, &onCreate);
    if (sName == "eglDestroySurface") return replaceFound(pfnFound, g_real.pfnDestroySurface, &onDestroySurface);
    if (sName == "eglBindTexImage") return replaceFound(pfnFound, g_real.pfnBindTexImage, &onBindTexImage);
    if (sName == "eglReleaseTexImage") return replaceFound(pfnFound, g_real.pfnReleaseTexImage, &onReleaseTexImage);
    // clang-format on
    return pfnFound;
}

// Before the library looks its first name up. In a test that holds the library's objects itself, the program
// is the module that does.
const bool s_blInstalled = xelttest::LookupHook<&watched>::install(
    GetModuleHandleA("XeltRender.dll") != nullptr ? "XeltRender.dll" : "");

} // namespace

EglFunctions &RealEgl()
{
    return g_real;
}

bool Active() noexcept
{
    return s_blInstalled && xelttest::angleDevice() != nullptr;
}

void HideExtension(bool blHide) noexcept
{
    g_blHidden = blHide;
}

void ClearFailures() noexcept
{
    CallFaults::Instance().Clear();
    // Nobody knows these surfaces any more; their textures are to go.
    Surfaces &surfaces = Surfaces::instance();
    const std::lock_guard<std::mutex> lock(surfaces.mutex);
    for (const auto &[display, surface] : std::exchange(surfaces.lost, {})) {
        g_real.pfnDestroySurface(display, surface);
    }
}

std::size_t LiveSurfaces() noexcept
{
    Surfaces &surfaces = Surfaces::instance();
    const std::lock_guard<std::mutex> lock(surfaces.mutex);
    return surfaces.living.size() + surfaces.nLost;
}

std::size_t BoundTextures() noexcept
{
    Surfaces &surfaces = Surfaces::instance();
    const std::lock_guard<std::mutex> lock(surfaces.mutex);
    return surfaces.bound.size();
}

} // namespace softegl
