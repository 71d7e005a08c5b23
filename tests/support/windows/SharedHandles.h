// A stand-in for textures that two devices share, in one process and on one device: some implementations of
// Direct3D 11 make no shared textures, and EGL's client buffers need them. The handle is the address of the
// texture's IDXGIResource. Thread-safe.
#pragma once

#include "platform/Direct3D11.h"

namespace xelttest {

// Creates the texture without the flag for sharing and takes note that it has one.
using CreateTexture = HRESULT(STDMETHODCALLTYPE *)(ID3D11Device *, const D3D11_TEXTURE2D_DESC *,
                                                   const D3D11_SUBRESOURCE_DATA *, ID3D11Texture2D **);
HRESULT createShared(CreateTexture pfnCreate, ID3D11Device *pDevice, const D3D11_TEXTURE2D_DESC &desc,
                     const D3D11_SUBRESOURCE_DATA *pData, ID3D11Texture2D **ppTexture);

// Whether the address is that of such a texture's ID3D11Texture2D or IDXGIResource.
bool isShared(void *pInterface);

// A reference to the texture behind the handle, if it is one of these.
bool openShared(HANDLE hShared, REFIID iid, void **ppObject, HRESULT &hrResult);

} // namespace xelttest
