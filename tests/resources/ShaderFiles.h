// The files that the library carries.
#pragma once

#include <QString>

#include <array>

namespace xelttest {

struct ShaderFile
{
    const char *pszPath;
    int nSize;
};

inline constexpr std::array<ShaderFile, 7> k_aShaderFiles = {{
    {":/opengl/shaders/VideoRGB.frag", 1804},
    {":/opengl/shaders/OSD.frag", 112},
    {":/opengl/shaders/OSD.vert", 149},
    {":/opengl/shaders/Video.vert", 181},
    {":/opengl/shaders/VideoYCbCr.frag", 3457},
    {":/shaderscommon/hsl.glsl", 955},
    {":/shaderscommon/colorspace.glsl", 3939},
}};

} // namespace xelttest
