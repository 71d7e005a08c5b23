#define COBJMACROS
#include "windows/Slots.h"

#include <d3d11.h>
#include <dxgi.h>

#define SLOT(type, method) (offsetof(type##Vtbl, method) / sizeof(void *))

const struct XeltSlots xeltSlots = {
    SLOT(ID3D11Device, CreateTexture2D),
    SLOT(ID3D11Device, OpenSharedResource),
    SLOT(ID3D11Device, GetImmediateContext),
    SLOT(ID3D11Texture2D, GetDesc),
    SLOT(IDXGIResource, GetSharedHandle),
    SLOT(ID3D11VideoDevice, CreateVideoProcessorEnumerator),
    SLOT(ID3D11VideoDevice, CreateVideoProcessor),
    SLOT(ID3D11VideoDevice, CreateVideoProcessorInputView),
    SLOT(ID3D11VideoDevice, CreateVideoProcessorOutputView),
    SLOT(ID3D11VideoProcessorEnumerator, CheckVideoProcessorFormat),
    SLOT(ID3D11VideoContext, VideoProcessorSetStreamColorSpace),
    SLOT(ID3D11VideoContext, VideoProcessorSetStreamSourceRect),
    SLOT(ID3D11VideoContext, VideoProcessorSetStreamAutoProcessingMode),
    SLOT(ID3D11VideoContext, VideoProcessorBlt),
};
