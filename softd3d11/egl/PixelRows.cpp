#include "softd3d11/egl/PixelRows.h"

namespace softegl {

std::vector<std::uint8_t> ToTightRgba(const std::uint8_t *pRows, std::size_t nPitch, std::size_t nWidth,
                                      std::size_t nHeight, bool blOpaque)
{
    const std::uint8_t nMask = blOpaque ? 255 : 0;
    std::vector<std::uint8_t> pixels(nWidth * nHeight * 4);
    for (std::size_t nY = 0; nY < nHeight; ++nY) {
        const std::uint8_t *pFrom = pRows + nY * nPitch;
        std::uint8_t *pTo = pixels.data() + nY * nWidth * 4;
        for (std::size_t nX = 0; nX < nWidth; ++nX, pFrom += 4, pTo += 4) {
            pTo[0] = pFrom[2];
            pTo[1] = pFrom[1];
            pTo[2] = pFrom[0];
            pTo[3] = static_cast<std::uint8_t>(pFrom[3] | nMask);
        }
    }
    return pixels;
}

} // namespace softegl
