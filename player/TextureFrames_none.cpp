// A build without a Direct3D 11 device.
#include "TextureFrames.h"

struct TextureFrames::Textures
{
};

bool TextureFrames::isAvailable()
{
    return false;
}

ID3D11Device *TextureFrames::device()
{
    return nullptr;
}

TextureFrames::TextureFrames() = default;
TextureFrames::~TextureFrames() = default;

const VideoFrameDesc *TextureFrames::upload(const VideoFrameDesc &)
{
    return nullptr;
}
