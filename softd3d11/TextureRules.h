#pragma once

#include "platform/Direct3DDeclarations.h"

namespace softd3d11 {

// Whether a texture can be made from the description and the data, which may be null. S_OK; E_INVALIDARG for
// what Direct3D forbids, and for formats that this device has not got, as of any device; E_NOTIMPL for what it allows and this device has not got (mip levels, multisampling,
// further ways of sharing); E_OUTOFMEMORY beyond 2 GiB.
HRESULT CheckTextureDesc(const D3D11_TEXTURE2D_DESC &desc,
                         const D3D11_SUBRESOURCE_DATA *pInitialData) noexcept;

} // namespace softd3d11
