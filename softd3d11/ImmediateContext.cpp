#include "softd3d11/ImmediateContext.h"

#include "softd3d11/SliceLock.h"
#include "softd3d11/Texture2D.h"
#include "softd3d11/TextureTransfer.h"

#include <mutex>

namespace softd3d11 {

namespace {

TexelRect WholeRect(const TextureStorage &storage)
{
    return {0, 0, storage.Desc().Width, storage.Desc().Height};
}

bool IsEmpty(const D3D11_BOX *pBox)
{
    return pBox != nullptr &&
           (pBox->left >= pBox->right || pBox->top >= pBox->bottom || pBox->front >= pBox->back);
}

// The texels that a box, which is not empty, means; null is all of them. False where the texture has not got
// them.
bool RectOfBox(const D3D11_BOX *pBox, const TextureStorage &storage, TexelRect &rect)
{
    rect = pBox != nullptr ? TexelRect{pBox->left, pBox->top, pBox->right, pBox->bottom} : WholeRect(storage);
    return (pBox == nullptr || (pBox->front == 0 && pBox->back == 1)) &&
           FitsInto(rect, storage.Format(), storage.Desc().Width, storage.Desc().Height);
}

bool HasSlice(const TextureStorage &storage, UINT nSlice)
{
    return nSlice < storage.Desc().ArraySize;
}

bool MapFlagsAllowed(D3D11_MAP mapType, UINT nMapFlags)
{
    // Discarding and not overwriting never wait.
    const bool blWaits = mapType != D3D11_MAP_WRITE_DISCARD && mapType != D3D11_MAP_WRITE_NO_OVERWRITE;
    return nMapFlags == 0 || (nMapFlags == D3D11_MAP_FLAG_DO_NOT_WAIT && blWaits);
}

bool CanMap(const D3D11_TEXTURE2D_DESC &desc, D3D11_MAP mapType)
{
    constexpr UINT kReadWrite = D3D11_CPU_ACCESS_READ | D3D11_CPU_ACCESS_WRITE;
    switch (mapType) {
    case D3D11_MAP_READ:
        return (desc.CPUAccessFlags & D3D11_CPU_ACCESS_READ) != 0;
    case D3D11_MAP_WRITE:
        return desc.Usage == D3D11_USAGE_STAGING && (desc.CPUAccessFlags & D3D11_CPU_ACCESS_WRITE) != 0;
    case D3D11_MAP_READ_WRITE:
        return (desc.CPUAccessFlags & kReadWrite) == kReadWrite;
    case D3D11_MAP_WRITE_DISCARD:
        return desc.Usage == D3D11_USAGE_DYNAMIC;
    default:
        return false; // not overwriting is for buffers
    }
}

// Whether a copy to the place is allowed. The caller holds the slices' mutexes.
bool CanCopy(const TextureStorage &target, UINT nTargetSlice, const TexelRect &place,
             const TextureStorage &source, UINT nSourceSlice)
{
    return target.Desc().Usage != D3D11_USAGE_IMMUTABLE && target.Desc().Format == source.Desc().Format &&
           FitsInto(place, target.Format(), target.Desc().Width, target.Desc().Height) &&
           !(&target == &source && nTargetSlice == nSourceSlice) && target.MappedFor(nTargetSlice) == 0 &&
           source.MappedFor(nSourceSlice) == 0;
}

// All slices, or none where one of them cannot be copied.
bool CopyWhole(const TextureStorage &target, const TextureStorage &source)
{
    const D3D11_TEXTURE2D_DESC &desc = target.Desc();
    if (desc.Width != source.Desc().Width || desc.Height != source.Desc().Height ||
        desc.ArraySize != source.Desc().ArraySize) {
        return false;
    }
    if (&target == &source) {
        return false;
    }
    const TexelRect whole = WholeRect(target);
    const std::scoped_lock lockMaps(target.MapMutex(), source.MapMutex());
    for (UINT i = 0; i < desc.ArraySize; ++i) {
        const SliceLock lock(target, i, source, i);
        if (!CanCopy(target, i, whole, source, i)) {
            return false;
        }
    }
    for (UINT i = 0; i < desc.ArraySize; ++i) {
        const SliceLock lock(target, i, source, i);
        CopyTexels(target, i, 0, 0, source, i, whole);
    }
    return true;
}

} // namespace

HRESULT ImmediateContext::QueryInterface(REFIID riid, void **ppObject)
{
    const Call call(Method::ContextQueryInterface);
    ClearResult(ppObject);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (ppObject == nullptr) {
        return call.Refuse(E_POINTER);
    }
    if (riid == IID_IUnknown || riid == IID_ID3D11DeviceChild || riid == IID_ID3D11DeviceContext) {
        *ppObject = static_cast<ID3D11DeviceContext *>(this);
    } else if (riid == IID_ID3D11VideoContext) {
        *ppObject = static_cast<ID3D11VideoContext *>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG ImmediateContext::AddRef()
{
    const ULONG nReferences = ++m_nReferences;
    if (nReferences == 1) {
        m_device.AddRef();
    }
    return nReferences;
}

ULONG ImmediateContext::Release()
{
    const ULONG nLeft = --m_nReferences;
    if (nLeft == 0) {
        m_device.Release();
    }
    return nLeft;
}

void ImmediateContext::GetDevice(ID3D11Device **ppDevice)
{
    if (ppDevice != nullptr) {
        m_device.AddRef();
        *ppDevice = &m_device;
    }
}

HRESULT ImmediateContext::GetPrivateData(REFGUID, UINT *pBytes, void *)
{
    ClearResult(pBytes);
    CountCall(Method::ContextUnsupported);
    return E_NOTIMPL;
}

HRESULT ImmediateContext::SetPrivateData(REFGUID, UINT, const void *)
{
    CountCall(Method::ContextUnsupported);
    return E_NOTIMPL;
}

HRESULT ImmediateContext::SetPrivateDataInterface(REFGUID, const IUnknown *)
{
    CountCall(Method::ContextUnsupported);
    return E_NOTIMPL;
}

HRESULT ImmediateContext::Map(ID3D11Resource *pResource, UINT nSubresource, D3D11_MAP mapType, UINT nMapFlags,
                              D3D11_MAPPED_SUBRESOURCE *pMapped)
{
    const Call call(Method::ContextMap);
    ClearResult(pMapped);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    const ComRef<Texture2D> texture = Unwrap<Texture2D>(pResource, &m_device);
    if (pMapped == nullptr || texture == nullptr || !HasSlice(texture->Storage(), nSubresource) ||
        !MapFlagsAllowed(mapType, nMapFlags) || !CanMap(texture->Storage().Desc(), mapType)) {
        return call.Refuse();
    }
    TextureStorage &storage = texture->Storage();
    const std::lock_guard<std::mutex> lockMap(storage.MapMutex());
    const std::lock_guard<std::mutex> lock(storage.SliceMutex(nSubresource));
    if (storage.MappedFor(nSubresource) != 0) {
        return call.Refuse();
    }
    storage.SetMapped(nSubresource, mapType);
    *pMapped = {storage.Slice(nSubresource), static_cast<UINT>(storage.RowPitch()),
                static_cast<UINT>(storage.SliceBytes())};
    return S_OK;
}

void ImmediateContext::Unmap(ID3D11Resource *pResource, UINT nSubresource)
{
    const Call call(Method::ContextUnmap);
    const ComRef<Texture2D> texture = Unwrap<Texture2D>(pResource, &m_device);
    if (texture == nullptr || !HasSlice(texture->Storage(), nSubresource)) {
        call.Refuse();
        return;
    }
    TextureStorage &storage = texture->Storage();
    const std::lock_guard<std::mutex> lock(storage.SliceMutex(nSubresource));
    if (storage.MappedFor(nSubresource) == 0) {
        call.Refuse();
        return;
    }
    storage.SetMapped(nSubresource, 0); // no listeners to tell: what can be mapped cannot be shared
}

void ImmediateContext::CopySubresourceRegion(ID3D11Resource *pTarget, UINT nTargetSubresource, UINT nLeft,
                                             UINT nTop, UINT nFront, ID3D11Resource *pSource,
                                             UINT nSourceSubresource, const D3D11_BOX *pBox)
{
    const Call call(Method::ContextCopySubresourceRegion);
    const ComRef<Texture2D> target = Unwrap<Texture2D>(pTarget, &m_device);
    const ComRef<Texture2D> source = Unwrap<Texture2D>(pSource, &m_device);
    TexelRect rect;
    if (target == nullptr || source == nullptr || nFront != 0 ||
        !HasSlice(source->Storage(), nSourceSubresource) ||
        !HasSlice(target->Storage(), nTargetSubresource)) {
        call.Refuse();
        return;
    }
    if (IsEmpty(pBox)) {
        return;
    }
    if (!RectOfBox(pBox, source->Storage(), rect)) {
        call.Refuse();
        return;
    }
    const TexelRect place = {nLeft, nTop, nLeft + rect.width(), nTop + rect.height()};
    {
        const SliceLock lock(target->Storage(), nTargetSubresource, source->Storage(), nSourceSubresource);
        if (!CanCopy(target->Storage(), nTargetSubresource, place, source->Storage(), nSourceSubresource)) {
            call.Refuse();
            return;
        }
        CopyTexels(target->Storage(), nTargetSubresource, nLeft, nTop, source->Storage(), nSourceSubresource,
                   rect);
    }
    target->Storage().Written();
}

void ImmediateContext::CopyResource(ID3D11Resource *pTarget, ID3D11Resource *pSource)
{
    const Call call(Method::ContextCopyResource);
    const ComRef<Texture2D> target = Unwrap<Texture2D>(pTarget, &m_device);
    const ComRef<Texture2D> source = Unwrap<Texture2D>(pSource, &m_device);
    if (target == nullptr || source == nullptr || !CopyWhole(target->Storage(), source->Storage())) {
        call.Refuse();
        return;
    }
    target->Storage().Written();
}

void ImmediateContext::UpdateSubresource(ID3D11Resource *pTarget, UINT nSubresource, const D3D11_BOX *pBox,
                                         const void *pData, UINT nRowPitch, UINT)
{
    const Call call(Method::ContextUpdateSubresource);
    const ComRef<Texture2D> target = Unwrap<Texture2D>(pTarget, &m_device);
    if (target == nullptr || pData == nullptr || !HasSlice(target->Storage(), nSubresource)) {
        call.Refuse();
        return;
    }
    if (IsEmpty(pBox)) {
        return;
    }
    TextureStorage &storage = target->Storage();
    const D3D11_USAGE usage = storage.Desc().Usage;
    TexelRect rect;
    if (!RectOfBox(pBox, storage, rect) || nRowPitch < rect.width() * storage.Format().nTexelBytes ||
        (usage != D3D11_USAGE_DEFAULT && usage != D3D11_USAGE_STAGING)) {
        call.Refuse();
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(storage.SliceMutex(nSubresource));
        if (storage.MappedFor(nSubresource) != 0) {
            call.Refuse();
            return;
        }
        WriteTexels(storage, nSubresource, rect, pData, nRowPitch);
    }
    storage.Written();
}

void ImmediateContext::ClearState()
{
    CountCall(Method::ContextClearState); // there is no state to clear
}

void ImmediateContext::Flush()
{
    CountCall(Method::ContextFlush); // every call is complete when it returns
}

} // namespace softd3d11
