#include "windows/CountedDevice.h"

#include "System.h"
#include "windows/EndNotice.h"
#include "windows/SharedHandles.h"
#include "windows/Slots.h"
#include "windows/VirtualTable.h"

#include "d3d11/ComPtr.h"
#include "softd3d11/Instrumentation.h"

#include <map>
#include <mutex>
#include <utility>

#ifdef _MSC_VER
#include <intrin.h>
#define XELT_CALLER _ReturnAddress()
#else
#define XELT_CALLER __builtin_return_address(0)
#endif

namespace xelttest {

namespace {

using softd3d11::Call;
using softd3d11::Method;

thread_local int t_nUncounted = 0;
thread_local ID3D11Device *t_pMaker = nullptr;

bool isWatched(const void *pCaller)
{
    return t_nUncounted == 0 && isOurCode(pCaller);
}

// The methods behind the replaced ones. All objects of an interface are of one class.
using QueryInterface = HRESULT(STDMETHODCALLTYPE *)(IUnknown *, REFIID, void **);
QueryInterface g_pfnQueryDevice;
QueryInterface g_pfnQueryContext;
QueryInterface g_pfnQueryTexture;
CreateTexture g_pfnCreateTexture;
HRESULT(STDMETHODCALLTYPE *g_pfnOpenShared)(ID3D11Device *, HANDLE, REFIID, void **);
void(STDMETHODCALLTYPE *g_pfnGetContext)(ID3D11Device *, ID3D11DeviceContext **);
void(STDMETHODCALLTYPE *g_pfnGetDesc)(ID3D11Texture2D *, D3D11_TEXTURE2D_DESC *);
HRESULT(STDMETHODCALLTYPE *g_pfnGetSharedHandle)(IDXGIResource *, HANDLE *);
HRESULT(STDMETHODCALLTYPE *g_pfnCreateEnumerator)
(ID3D11VideoDevice *, const D3D11_VIDEO_PROCESSOR_CONTENT_DESC *, ID3D11VideoProcessorEnumerator **);
HRESULT(STDMETHODCALLTYPE *g_pfnCreateProcessor)
(ID3D11VideoDevice *, ID3D11VideoProcessorEnumerator *, UINT, ID3D11VideoProcessor **);
HRESULT(STDMETHODCALLTYPE *g_pfnCreateInputView)
(ID3D11VideoDevice *, ID3D11Resource *, ID3D11VideoProcessorEnumerator *,
 const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC *, ID3D11VideoProcessorInputView **);
HRESULT(STDMETHODCALLTYPE *g_pfnCreateOutputView)
(ID3D11VideoDevice *, ID3D11Resource *, ID3D11VideoProcessorEnumerator *,
 const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC *, ID3D11VideoProcessorOutputView **);
HRESULT(STDMETHODCALLTYPE *g_pfnCheckFormat)(ID3D11VideoProcessorEnumerator *, DXGI_FORMAT, UINT *);
void(STDMETHODCALLTYPE *g_pfnSetColorSpace)(ID3D11VideoContext *, ID3D11VideoProcessor *, UINT,
                                            const D3D11_VIDEO_PROCESSOR_COLOR_SPACE *);
void(STDMETHODCALLTYPE *g_pfnSetSourceRect)(ID3D11VideoContext *, ID3D11VideoProcessor *, UINT, BOOL,
                                            const RECT *);
void(STDMETHODCALLTYPE *g_pfnSetAutoProcessing)(ID3D11VideoContext *, ID3D11VideoProcessor *, UINT, BOOL);
HRESULT(STDMETHODCALLTYPE *g_pfnBlt)
(ID3D11VideoContext *, ID3D11VideoProcessor *, ID3D11VideoProcessorOutputView *, UINT, UINT,
 const D3D11_VIDEO_PROCESSOR_STREAM *);

// Which devices have the stand-in.
struct Sharing
{
    std::mutex mutex;
    std::map<ID3D11Device *, bool> ofDevice;

    static Sharing &instance()
    {
        static Sharing &sharing = *new Sharing;
        return sharing;
    }
    bool has(ID3D11Device *pDevice)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return ofDevice[pDevice];
    }
};

// A counted call: clears the result, then fails if it must, then runs.
template <typename Result, typename Run> HRESULT counted(Method method, Result *pResult, Run &&run)
{
    const Call call(method);
    if (FAILED(call.Injected())) {
        softd3d11::ClearResult(pResult);
        return call.Injected();
    }
    const Uncounted uncounted; // what is called on its behalf
    const HRESULT hr = run();
    return FAILED(hr) ? call.Refuse(hr) : hr;
}

void adopt(ID3D11Device *pDevice, ID3D11DeviceChild *pChild)
{
    ID3D11Device *const pMaker = t_pMaker;
    ID3D11Device *const pOwner = pMaker != nullptr ? pMaker : pDevice;
    if (pMaker != nullptr) {
        pMaker->AddRef();
    }
    softd3d11::live::AddChild(pOwner);
    whenItEnds(*pChild, Notice::Counted, [pOwner, pMaker] {
        softd3d11::live::RemoveChild(pOwner);
        if (pMaker != nullptr) {
            pMaker->Release();
        }
    });
}

template <typename Result> void adoptChildOf(ID3D11VideoDevice *pVideoDevice, Result **ppResult)
{
    if (ppResult == nullptr) {
        return;
    }
    ComPtr<ID3D11Device> device;
    pVideoDevice->QueryInterface(IID_ID3D11Device, device.ReleaseAndGetVoidAddressOf());
    adopt(device.Get(), *ppResult);
}

HRESULT STDMETHODCALLTYPE onGetSharedHandle(IDXGIResource *pResource, HANDLE *phShared)
{
    const auto answer = [=]() -> HRESULT {
        if (!isShared(pResource)) {
            return g_pfnGetSharedHandle(pResource, phShared);
        }
        *phShared = pResource;
        return S_OK;
    };
    return isWatched(XELT_CALLER) ? counted(Method::ResourceGetSharedHandle, phShared, answer) : answer();
}

HRESULT STDMETHODCALLTYPE onQueryTexture(IUnknown *pTexture, REFIID iid, void **ppObject)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnQueryTexture(pTexture, iid, ppObject);
    }
    return counted(Method::TextureQueryInterface, ppObject, [&] {
        const HRESULT hr = g_pfnQueryTexture(pTexture, iid, ppObject);
        if (SUCCEEDED(hr) && IsEqualGUID(iid, IID_IDXGIResource)) {
            replaceMethod(*ppObject, xeltSlots.nResourceGetSharedHandle, &onGetSharedHandle,
                          g_pfnGetSharedHandle);
        }
        return hr;
    });
}

void STDMETHODCALLTYPE onGetDesc(ID3D11Texture2D *pTexture, D3D11_TEXTURE2D_DESC *pDesc)
{
    if (isWatched(XELT_CALLER)) {
        softd3d11::CountCall(Method::TextureGetDesc);
    }
    g_pfnGetDesc(pTexture, pDesc);
    if (isShared(pTexture)) {
        pDesc->MiscFlags |= D3D11_RESOURCE_MISC_SHARED;
    }
}

HRESULT createTexture(ID3D11Device *pDevice, const D3D11_TEXTURE2D_DESC *pDesc,
                      const D3D11_SUBRESOURCE_DATA *pData, ID3D11Texture2D **ppTexture)
{
    const bool blShared = pDesc != nullptr && (pDesc->MiscFlags & D3D11_RESOURCE_MISC_SHARED) != 0;
    const HRESULT hr = blShared && Sharing::instance().has(pDevice)
                           ? createShared(g_pfnCreateTexture, pDevice, *pDesc, pData, ppTexture)
                           : g_pfnCreateTexture(pDevice, pDesc, pData, ppTexture);
    if (SUCCEEDED(hr) && ppTexture != nullptr) {
        adopt(pDevice, *ppTexture);
        replaceMethod(static_cast<IUnknown *>(*ppTexture), 0, &onQueryTexture, g_pfnQueryTexture);
        replaceMethod(*ppTexture, xeltSlots.nTextureGetDesc, &onGetDesc, g_pfnGetDesc);
    }
    return hr;
}

HRESULT STDMETHODCALLTYPE onCreateTexture(ID3D11Device *pDevice, const D3D11_TEXTURE2D_DESC *pDesc,
                                          const D3D11_SUBRESOURCE_DATA *pData, ID3D11Texture2D **ppTexture)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnCreateTexture(pDevice, pDesc, pData, ppTexture);
    }
    return counted(Method::DeviceCreateTexture2D, ppTexture,
                   [&] { return createTexture(pDevice, pDesc, pData, ppTexture); });
}

// EGL's call as a rule.
HRESULT STDMETHODCALLTYPE onOpenShared(ID3D11Device *pDevice, HANDLE hShared, REFIID iid, void **ppObject)
{
    const auto open = [&] {
        HRESULT hr = S_OK;
        return openShared(hShared, iid, ppObject, hr) ? hr : g_pfnOpenShared(pDevice, hShared, iid, ppObject);
    };
    return isWatched(XELT_CALLER) ? counted(Method::DeviceOpenSharedResource, ppObject, open) : open();
}

HRESULT STDMETHODCALLTYPE onCheckFormat(ID3D11VideoProcessorEnumerator *pEnumerator, DXGI_FORMAT format,
                                        UINT *pnFlags)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnCheckFormat(pEnumerator, format, pnFlags);
    }
    return counted(Method::EnumeratorCheckVideoProcessorFormat, pnFlags,
                   [&] { return g_pfnCheckFormat(pEnumerator, format, pnFlags); });
}

HRESULT STDMETHODCALLTYPE onCreateEnumerator(ID3D11VideoDevice *pDevice,
                                             const D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pDesc,
                                             ID3D11VideoProcessorEnumerator **ppEnumerator)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnCreateEnumerator(pDevice, pDesc, ppEnumerator);
    }
    return counted(Method::VideoDeviceCreateVideoProcessorEnumerator, ppEnumerator, [&] {
        const HRESULT hr = g_pfnCreateEnumerator(pDevice, pDesc, ppEnumerator);
        if (SUCCEEDED(hr) && ppEnumerator != nullptr) {
            adoptChildOf(pDevice, ppEnumerator);
            replaceMethod(*ppEnumerator, xeltSlots.nEnumeratorCheckFormat, &onCheckFormat, g_pfnCheckFormat);
        }
        return hr;
    });
}

HRESULT STDMETHODCALLTYPE onCreateProcessor(ID3D11VideoDevice *pDevice,
                                            ID3D11VideoProcessorEnumerator *pEnumerator, UINT nRate,
                                            ID3D11VideoProcessor **ppProcessor)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnCreateProcessor(pDevice, pEnumerator, nRate, ppProcessor);
    }
    return counted(Method::VideoDeviceCreateVideoProcessor, ppProcessor, [&] {
        const HRESULT hr = g_pfnCreateProcessor(pDevice, pEnumerator, nRate, ppProcessor);
        if (SUCCEEDED(hr)) {
            adoptChildOf(pDevice, ppProcessor);
        }
        return hr;
    });
}

HRESULT STDMETHODCALLTYPE onCreateInputView(ID3D11VideoDevice *pDevice, ID3D11Resource *pResource,
                                            ID3D11VideoProcessorEnumerator *pEnumerator,
                                            const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC *pDesc,
                                            ID3D11VideoProcessorInputView **ppView)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnCreateInputView(pDevice, pResource, pEnumerator, pDesc, ppView);
    }
    return counted(Method::VideoDeviceCreateVideoProcessorInputView, ppView, [&] {
        const HRESULT hr = g_pfnCreateInputView(pDevice, pResource, pEnumerator, pDesc, ppView);
        if (SUCCEEDED(hr)) {
            adoptChildOf(pDevice, ppView);
        }
        return hr;
    });
}

HRESULT STDMETHODCALLTYPE onCreateOutputView(ID3D11VideoDevice *pDevice, ID3D11Resource *pResource,
                                             ID3D11VideoProcessorEnumerator *pEnumerator,
                                             const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC *pDesc,
                                             ID3D11VideoProcessorOutputView **ppView)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnCreateOutputView(pDevice, pResource, pEnumerator, pDesc, ppView);
    }
    return counted(Method::VideoDeviceCreateVideoProcessorOutputView, ppView, [&] {
        const HRESULT hr = g_pfnCreateOutputView(pDevice, pResource, pEnumerator, pDesc, ppView);
        if (SUCCEEDED(hr)) {
            adoptChildOf(pDevice, ppView);
        }
        return hr;
    });
}

void STDMETHODCALLTYPE onSetColorSpace(ID3D11VideoContext *pContext, ID3D11VideoProcessor *pProcessor,
                                       UINT nStream, const D3D11_VIDEO_PROCESSOR_COLOR_SPACE *pColorSpace)
{
    if (isWatched(XELT_CALLER)) {
        softd3d11::CountCall(Method::VideoContextSetStreamColorSpace);
    }
    g_pfnSetColorSpace(pContext, pProcessor, nStream, pColorSpace);
}

void STDMETHODCALLTYPE onSetSourceRect(ID3D11VideoContext *pContext, ID3D11VideoProcessor *pProcessor,
                                       UINT nStream, BOOL blEnable, const RECT *pRect)
{
    if (isWatched(XELT_CALLER)) {
        softd3d11::CountCall(Method::VideoContextSetStreamSourceRect);
    }
    g_pfnSetSourceRect(pContext, pProcessor, nStream, blEnable, pRect);
}

void STDMETHODCALLTYPE onSetAutoProcessing(ID3D11VideoContext *pContext, ID3D11VideoProcessor *pProcessor,
                                           UINT nStream, BOOL blEnable)
{
    if (isWatched(XELT_CALLER)) {
        softd3d11::CountCall(Method::VideoContextSetStreamAutoProcessingMode);
    }
    g_pfnSetAutoProcessing(pContext, pProcessor, nStream, blEnable);
}

HRESULT STDMETHODCALLTYPE onBlt(ID3D11VideoContext *pContext, ID3D11VideoProcessor *pProcessor,
                                ID3D11VideoProcessorOutputView *pView, UINT nFrame, UINT nStreams,
                                const D3D11_VIDEO_PROCESSOR_STREAM *pStreams)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnBlt(pContext, pProcessor, pView, nFrame, nStreams, pStreams);
    }
    return counted(Method::VideoContextVideoProcessorBlt, static_cast<HANDLE *>(nullptr),
                   [&] { return g_pfnBlt(pContext, pProcessor, pView, nFrame, nStreams, pStreams); });
}

HRESULT STDMETHODCALLTYPE onQueryContext(IUnknown *pContext, REFIID iid, void **ppObject)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnQueryContext(pContext, iid, ppObject);
    }
    return counted(Method::ContextQueryInterface, ppObject, [&] {
        const HRESULT hr = g_pfnQueryContext(pContext, iid, ppObject);
        if (SUCCEEDED(hr) && IsEqualGUID(iid, IID_ID3D11VideoContext)) {
            void *const pVideo = *ppObject;
            replaceMethod(pVideo, xeltSlots.nVideoContextSetColorSpace, &onSetColorSpace, g_pfnSetColorSpace);
            replaceMethod(pVideo, xeltSlots.nVideoContextSetSourceRect, &onSetSourceRect, g_pfnSetSourceRect);
            replaceMethod(pVideo, xeltSlots.nVideoContextSetAutoProcessingMode, &onSetAutoProcessing,
                          g_pfnSetAutoProcessing);
            replaceMethod(pVideo, xeltSlots.nVideoContextBlt, &onBlt, g_pfnBlt);
        }
        return hr;
    });
}

void STDMETHODCALLTYPE onGetContext(ID3D11Device *pDevice, ID3D11DeviceContext **ppContext)
{
    g_pfnGetContext(pDevice, ppContext);
    if (isWatched(XELT_CALLER)) {
        softd3d11::CountCall(Method::DeviceGetImmediateContext);
        replaceMethod(static_cast<IUnknown *>(*ppContext), 0, &onQueryContext, g_pfnQueryContext);
    }
}

HRESULT STDMETHODCALLTYPE onQueryDevice(IUnknown *pDevice, REFIID iid, void **ppObject)
{
    if (!isWatched(XELT_CALLER)) {
        return g_pfnQueryDevice(pDevice, iid, ppObject);
    }
    return counted(Method::DeviceQueryInterface, ppObject, [&] {
        const HRESULT hr = g_pfnQueryDevice(pDevice, iid, ppObject);
        if (SUCCEEDED(hr) && IsEqualGUID(iid, IID_ID3D11VideoDevice)) {
            void *const pVideo = *ppObject;
            replaceMethod(pVideo, xeltSlots.nVideoDeviceCreateEnumerator, &onCreateEnumerator,
                          g_pfnCreateEnumerator);
            replaceMethod(pVideo, xeltSlots.nVideoDeviceCreateProcessor, &onCreateProcessor,
                          g_pfnCreateProcessor);
            replaceMethod(pVideo, xeltSlots.nVideoDeviceCreateInputView, &onCreateInputView,
                          g_pfnCreateInputView);
            replaceMethod(pVideo, xeltSlots.nVideoDeviceCreateOutputView, &onCreateOutputView,
                          g_pfnCreateOutputView);
        }
        return hr;
    });
}

} // namespace

Uncounted::Uncounted()
{
    ++t_nUncounted;
}

Uncounted::~Uncounted()
{
    --t_nUncounted;
}

MadeOn::MadeOn(ID3D11Device &device) : m_pBefore(std::exchange(t_pMaker, &device)) {}

MadeOn::~MadeOn()
{
    t_pMaker = m_pBefore;
}

void countCalls(ID3D11Device &device, bool blShareHandles)
{
    softd3d11::live::AddDevice(&device);
    ID3D11Device *const pDevice = &device;
    whenItEnds(device, Notice::Counted, [pDevice] { softd3d11::live::RemoveDevice(pDevice); });
    {
        Sharing &sharing = Sharing::instance();
        const std::lock_guard<std::mutex> lock(sharing.mutex);
        sharing.ofDevice[&device] = blShareHandles;
    }
    replaceMethod(static_cast<IUnknown *>(&device), 0, &onQueryDevice, g_pfnQueryDevice);
    replaceMethod(&device, xeltSlots.nDeviceCreateTexture2D, &onCreateTexture, g_pfnCreateTexture);
    replaceMethod(&device, xeltSlots.nDeviceOpenSharedResource, &onOpenShared, g_pfnOpenShared);
    replaceMethod(&device, xeltSlots.nDeviceGetImmediateContext, &onGetContext, g_pfnGetContext);
}

} // namespace xelttest
