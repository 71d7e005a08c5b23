// softd3d11::CreateDevice on the system's Direct3D 11: with OpenGL ES on ANGLE it answers with ANGLE's own
// device, with a stand-in for shared handles, otherwise with a new one.
#include "TestEnvironment.h"
#include "windows/AngleDevice.h"
#include "windows/CountedDevice.h"

#include "softd3d11/Instrumentation.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>

#include <d3d11_4.h>

namespace xelttest {

namespace {

template <typename Pfn> Pfn function(const char *pszModule, const char *pszName)
{
    const HMODULE hModule = LoadLibraryA(pszModule);
    return hModule != nullptr
               ? reinterpret_cast<Pfn>(reinterpret_cast<void *>(GetProcAddress(hModule, pszName)))
               : nullptr;
}

// Decoding threads use the immediate context while ANGLE does.
void protect(ID3D11Device &device)
{
    ComPtr<ID3D11DeviceContext> context;
    device.GetImmediateContext(context.ReleaseAndGetAddressOf());
    ComPtr<ID3D11Multithread> threads;
    if (SUCCEEDED(context.As(__uuidof(ID3D11Multithread), threads))) {
        threads->SetMultithreadProtected(TRUE);
    }
}

ID3D11Device *askEgl()
{
    constexpr EGLint k_nDevice = 0x322C;      // EGL_DEVICE_EXT
    constexpr EGLint k_nD3D11Device = 0x33A1; // EGL_D3D11_DEVICE_ANGLE
    using Query = EGLBoolean(EGLAPIENTRY *)(void *, EGLint, EGLAttrib *);
    using Lookup = void *(EGLAPIENTRY *)(const char *);
    const auto pfnLookup = function<Lookup>("libEGL.dll", "eglGetProcAddress");
    const auto pfnDisplay = function<EGLDisplay(EGLAPIENTRY *)()>("libEGL.dll", "eglGetCurrentDisplay");
    if (pfnLookup == nullptr || pfnDisplay == nullptr) {
        return nullptr;
    }
    const auto pfnOfDisplay = reinterpret_cast<Query>(pfnLookup("eglQueryDisplayAttribEXT"));
    const auto pfnOfDevice = reinterpret_cast<Query>(pfnLookup("eglQueryDeviceAttribEXT"));
    EGLAttrib nDevice = 0;
    EGLAttrib nD3D11Device = 0;
    if (pfnOfDisplay == nullptr || pfnOfDevice == nullptr ||
        pfnOfDisplay(pfnDisplay(), k_nDevice, &nDevice) == EGL_FALSE ||
        pfnOfDevice(reinterpret_cast<void *>(nDevice), k_nD3D11Device, &nD3D11Device) == EGL_FALSE) {
        return nullptr;
    }
    return reinterpret_cast<ID3D11Device *>(nD3D11Device);
}

// Qt has one display for all contexts, so any of them will do.
ID3D11Device *findAngleDevice()
{
    QOpenGLContext *const pBefore = QOpenGLContext::currentContext();
    QSurface *const pSurfaceBefore = pBefore != nullptr ? pBefore->surface() : nullptr;
    ID3D11Device *pDevice = nullptr;
    {
        QOffscreenSurface surface;
        surface.setFormat(QSurfaceFormat::defaultFormat());
        surface.create();
        QOpenGLContext context;
        if (context.create() && context.makeCurrent(&surface)) {
            pDevice = askEgl();
            context.doneCurrent();
        }
    }
    if (pSurfaceBefore != nullptr) {
        pBefore->makeCurrent(pSurfaceBefore);
    }
    return pDevice;
}

} // namespace

ID3D11Device *angleDevice()
{
    static ID3D11Device *const s_pDevice = [] {
        ID3D11Device *pDevice = findAngleDevice();
        if (pDevice != nullptr) {
            pDevice->AddRef(); // for as long as the process lives
            protect(*pDevice);
            countCalls(*pDevice, true);
        }
        return pDevice;
    }();
    return s_pDevice;
}

} // namespace xelttest

HRESULT softd3d11::CreateDevice(ID3D11Device **ppDevice) noexcept
{
    using namespace xelttest;
    if (glFlavour() == GlFlavour::Es) {
        *ppDevice = angleDevice();
        if (*ppDevice == nullptr) {
            return E_FAIL;
        }
        (*ppDevice)->AddRef();
        return S_OK;
    }
    static const auto s_pfnCreate = function<PFN_D3D11_CREATE_DEVICE>("d3d11.dll", "D3D11CreateDevice");
    if (s_pfnCreate == nullptr) {
        return E_FAIL;
    }
    const HRESULT hr = s_pfnCreate(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr,
                                   D3D11_CREATE_DEVICE_BGRA_SUPPORT | D3D11_CREATE_DEVICE_VIDEO_SUPPORT,
                                   nullptr, 0, D3D11_SDK_VERSION, ppDevice, nullptr, nullptr);
    if (SUCCEEDED(hr)) {
        protect(**ppDevice);
        countCalls(**ppDevice, false);
    }
    return hr;
}
