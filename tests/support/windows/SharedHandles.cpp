#include "windows/SharedHandles.h"

#include "windows/CountedDevice.h"
#include "windows/EndNotice.h"

#include "d3d11/ComPtr.h"

#include <mutex>
#include <set>

namespace xelttest {

namespace {

// Never destroyed: textures may outlive everything of the test's.
struct Shared
{
    std::mutex mutex;
    std::set<void *> textures;
    std::set<void *> resources;

    static Shared &instance()
    {
        static Shared &shared = *new Shared;
        return shared;
    }
};

void forget(void *pTexture, void *pResource)
{
    Shared &shared = Shared::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    shared.textures.erase(pTexture);
    shared.resources.erase(pResource);
}

} // namespace

HRESULT createShared(CreateTexture pfnCreate, ID3D11Device *pDevice, const D3D11_TEXTURE2D_DESC &desc,
                     const D3D11_SUBRESOURCE_DATA *pData, ID3D11Texture2D **ppTexture)
{
    D3D11_TEXTURE2D_DESC unshared = desc;
    unshared.MiscFlags &= ~static_cast<UINT>(D3D11_RESOURCE_MISC_SHARED);
    const HRESULT hr = pfnCreate(pDevice, &unshared, pData, ppTexture);
    if (FAILED(hr) || ppTexture == nullptr) {
        return hr;
    }
    ID3D11Texture2D *const pTexture = *ppTexture;
    ComPtr<IDXGIResource> resource;
    if (SUCCEEDED(pTexture->QueryInterface(IID_IDXGIResource, resource.ReleaseAndGetVoidAddressOf()))) {
        IDXGIResource *const pResource = resource.Get();
        {
            Shared &shared = Shared::instance();
            const std::lock_guard<std::mutex> lock(shared.mutex);
            shared.textures.insert(pTexture);
            shared.resources.insert(pResource);
        }
        whenItEnds(*pTexture, Notice::Shared, [=] { forget(pTexture, pResource); });
    }
    return hr;
}

bool isShared(void *pInterface)
{
    Shared &shared = Shared::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    return shared.textures.count(pInterface) != 0 || shared.resources.count(pInterface) != 0;
}

bool openShared(HANDLE hShared, REFIID iid, void **ppObject, HRESULT &hrResult)
{
    Shared &shared = Shared::instance();
    {
        const std::lock_guard<std::mutex> lock(shared.mutex);
        if (shared.resources.count(hShared) == 0) {
            return false;
        }
    }
    const Uncounted uncounted; // the stand-in's own call
    hrResult = static_cast<IUnknown *>(hShared)->QueryInterface(iid, ppObject);
    return true;
}

} // namespace xelttest
