/* Places of methods in the virtual tables of Direct3D's objects. Only the declarations for C tell them. */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

struct XeltSlots
{
    size_t nDeviceCreateTexture2D;
    size_t nDeviceOpenSharedResource;
    size_t nDeviceGetImmediateContext;
    size_t nTextureGetDesc;
    size_t nResourceGetSharedHandle;
    size_t nVideoDeviceCreateEnumerator;
    size_t nVideoDeviceCreateProcessor;
    size_t nVideoDeviceCreateInputView;
    size_t nVideoDeviceCreateOutputView;
    size_t nEnumeratorCheckFormat;
    size_t nVideoContextSetColorSpace;
    size_t nVideoContextSetSourceRect;
    size_t nVideoContextSetAutoProcessingMode;
    size_t nVideoContextBlt;
};

extern const struct XeltSlots xeltSlots;

#ifdef __cplusplus
}
#endif
