#pragma once

#include <XeltRender.h>

#include <memory>

struct ID3D11Device;

// Hands frames to the renderer as a Direct3D 11 decoder does: as slices of an NV12 texture array, in turn.
// All of them share one device. Not shared between threads.
class TextureFrames
{
public:
    // Whether this build has a device. Any thread.
    static bool isAvailable();
    // For the renderer; null without one. Any thread.
    static ID3D11Device *device();

    TextureFrames();
    ~TextureFrames();

    // Copies an NV12 frame, packed and one plane behind the other, into the next slice. Null when no texture
    // of its size is to be had. The frame that comes back lasts until the next call, its slice for sixteen
    // calls.
    const VideoFrameDesc *upload(const VideoFrameDesc &nv12);

private:
    struct Textures;
    std::unique_ptr<Textures> m_pTextures;
};
