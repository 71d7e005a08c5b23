// softd3d11::CreateDevice on the system's Direct3D 11: a new device, or, with OpenGL ES on ANGLE, one that stands
// for ANGLE's own, where there is a stand-in for shared handles.
#include "TestEnvironment.h"
#include "windows/AngleDevice.h"
#include "windows/CountedDevice.h"
#include "windows/HostDevice.h"

#include "softd3d11/Instrumentation.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>

#include <d3d11_4.h>

#include <array>
#include <cstdint>

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

// Runs with a context of its own current. Qt has one display for all contexts, so any of them will do.
template <typename Run> void withContext(Run &&run)
{
    QOpenGLContext *const pBefore = QOpenGLContext::currentContext();
    QSurface *const pSurfaceBefore = pBefore != nullptr ? pBefore->surface() : nullptr;
    {
        QOffscreenSurface surface;
        surface.setFormat(QSurfaceFormat::defaultFormat());
        surface.create();
        QOpenGLContext context;
        if (context.create() && context.makeCurrent(&surface)) {
            run(context);
            context.doneCurrent();
        }
    }
    if (pSurfaceBefore != nullptr) {
        pBefore->makeCurrent(pSurfaceBefore);
    }
}

ID3D11Device *findAngleDevice()
{
    ID3D11Device *pDevice = nullptr;
    withContext([&pDevice](QOpenGLContext &) { pDevice = askEgl(); });
    return pDevice;
}

void drawBlackTexture(QOpenGLFunctions &gl)
{
    QOpenGLShaderProgram program;
    program.addShaderFromSourceCode(QOpenGLShader::Vertex,
                                    "attribute vec4 a; void main() { gl_Position = a; }");
    program.addShaderFromSourceCode(QOpenGLShader::Fragment,
                                    "precision mediump float; uniform sampler2D t;"
                                    "void main() { gl_FragColor = texture2D(t, vec2(0.5)); }");
    program.bindAttributeLocation("a", 0);
    program.link();
    program.bind();
    QOpenGLFramebufferObject target(1, 1);
    target.bind();
    const std::array<uint8_t, 4> aBlack{};
    GLuint nTexture = 0;
    gl.glGenTextures(1, &nTexture);
    gl.glBindTexture(GL_TEXTURE_2D, nTexture);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, aBlack.data());
    const std::array<float, 6> afCorners{-1, -1, 3, -1, -1, 3};
    gl.glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, afCorners.data());
    gl.glEnableVertexAttribArray(0);
    gl.glDrawArrays(GL_TRIANGLES, 0, 3);
    gl.glFinish();
    gl.glDeleteTextures(1, &nTexture);
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

void unbindWhatWasDrawn()
{
    withContext([](QOpenGLContext &context) { drawBlackTexture(*context.functions()); });
}

} // namespace xelttest

HRESULT softd3d11::CreateDevice(ID3D11Device **ppDevice) noexcept
{
    using namespace xelttest;
    if (glFlavour() == GlFlavour::Es) {
        ID3D11Device *const pReal = angleDevice();
        *ppDevice = pReal != nullptr ? makeHostDevice(*pReal) : nullptr;
        return *ppDevice != nullptr ? S_OK : E_FAIL;
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
