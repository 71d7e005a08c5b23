#pragma once

// How the planes lie in the memory that is handed to the renderer.
enum class FrameLayout {
    Yv12,
    Nv12,       // two plane pointers, packed rows
    Nv12Padded, // one pointer; rows wider and the surface higher than the picture, as decoders make them
    Texture,    // packed as Nv12, one plane behind the other, on its way into a Direct3D 11 texture
};
