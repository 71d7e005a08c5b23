#include "Frames.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <random>

namespace xelttest {

namespace {

// What one plane holds; the patterns differ from plane to plane so that swapped planes show.
struct PlaneShape
{
    int nWidth;
    int nHeight;
    int nPlane; // 0 luma, 1 U, 2 V
};

uint8_t rampAt(const PlaneShape &shape, int x, int y)
{
    const double dX = shape.nWidth > 1 ? double(x) / (shape.nWidth - 1) : 0.5;
    const double dY = shape.nHeight > 1 ? double(y) / (shape.nHeight - 1) : 0.5;
    const double adValue[] = {0.7 * dX + 0.3 * dY, 0.2 + 0.6 * dY, 0.85 - 0.5 * dX - 0.2 * dY};
    return static_cast<uint8_t>(std::lround(255.0 * adValue[shape.nPlane]));
}

uint8_t barsAt(const PlaneShape &shape, int x, int y)
{
    static const uint8_t k_aBars[3][8] = {{235, 180, 150, 130, 90, 70, 40, 16},
                                          {128, 44, 156, 72, 184, 100, 212, 128},
                                          {128, 142, 44, 58, 198, 212, 114, 128}};
    const int nColumn = x * 8 / std::max(shape.nWidth, 1);
    const int nRow = y * 3 / std::max(shape.nHeight, 1);
    return k_aBars[shape.nPlane][(nColumn + 3 * nRow) % 8];
}

uint8_t checkerAt(const PlaneShape &shape, int x, int y)
{
    const int nCell = shape.nPlane == 0 ? 8 : 4;
    const bool blOn = ((x / nCell) + (y / nCell)) % 2 == 0;
    static const uint8_t k_aOn[3] = {220, 90, 170};
    static const uint8_t k_aOff[3] = {50, 160, 100};
    return blOn ? k_aOn[shape.nPlane] : k_aOff[shape.nPlane];
}

uint8_t cardAt(const PlaneShape &shape, int x, int y, std::mt19937 &random)
{
    const bool blLeft = 5 * x < 2 * shape.nWidth;
    const bool blTop = 5 * y < 3 * shape.nHeight;
    const auto nNoise = static_cast<uint8_t>(random());
    if (blTop) {
        return blLeft ? rampAt(shape, x, y) : barsAt(shape, x, y);
    }
    return blLeft ? nNoise : checkerAt(shape, x, y);
}

std::vector<uint8_t> makePlane(Pattern pattern, const PlaneShape &shape, uint32_t nSeed)
{
    std::mt19937 random(nSeed * 3 + static_cast<uint32_t>(shape.nPlane));
    std::vector<uint8_t> aBytes;
    aBytes.reserve(static_cast<size_t>(shape.nWidth) * static_cast<size_t>(shape.nHeight));
    for (int y = 0; y < shape.nHeight; ++y) {
        for (int x = 0; x < shape.nWidth; ++x) {
            switch (pattern) {
            case Pattern::Ramp:
                aBytes.push_back(rampAt(shape, x, y));
                break;
            case Pattern::Bars:
                aBytes.push_back(barsAt(shape, x, y));
                break;
            case Pattern::Noise:
                aBytes.push_back(static_cast<uint8_t>(random()));
                break;
            case Pattern::Checker:
                aBytes.push_back(checkerAt(shape, x, y));
                break;
            case Pattern::Card:
                aBytes.push_back(cardAt(shape, x, y, random));
                break;
            }
        }
    }
    return aBytes;
}

void copyInto(uint8_t *pTarget, const std::vector<uint8_t> &aSource)
{
    std::copy(aSource.begin(), aSource.end(), pTarget);
}

HostFrame frameOfSize(const Planes &planes, int nType)
{
    HostFrame frame;
    frame.desc.iWidth = planes.nWidth;
    frame.desc.iHeight = planes.nHeight;
    frame.desc.nDisplayType = nType;
    return frame;
}

// Rows of nRowBytes, nPitch apart, as short a block as holds them; gaps keep a filler that must never show.
void fillRows(uint8_t *pTarget, size_t nSize, int nPitch, int nRowBytes, int nRows,
              const std::vector<uint8_t> &aSource, int nSourceRow)
{
    std::memset(pTarget, 0xA5, nSize);
    const int nBytes = std::min(nRowBytes, nSourceRow);
    for (int nRow = 0; nRow < nRows; ++nRow) {
        std::copy_n(std::next(aSource.begin(), std::ptrdiff_t(nRow) * nSourceRow), nBytes,
                    pTarget + std::ptrdiff_t(nRow) * nPitch);
    }
}

size_t rowsSize(int nPitch, int nRowBytes, int nRows)
{
    return nRows < 1 ? 0
                     : static_cast<size_t>(nPitch) * static_cast<size_t>(nRows - 1) +
                           static_cast<size_t>(nRowBytes);
}

std::vector<uint8_t> interleave(const Planes &planes)
{
    std::vector<uint8_t> aUV;
    for (size_t i = 0; i < planes.aU.size(); ++i) {
        aUV.push_back(planes.aU[i]);
        aUV.push_back(planes.aV[i]);
    }
    return aUV;
}

HostFrame packedNv12(const Planes &planes, bool blPlanePointers)
{
    HostFrame frame = frameOfSize(planes, VIDEO_DISPLAY_NV12);
    const size_t nLuma = planes.aY.size();
    std::vector<uint8_t> aUV = interleave(planes);
    if (blPlanePointers) {
        aUV.resize(nLuma / 2, 0x5A);
        frame.vecBlocks.emplace_back(nLuma);
        frame.vecBlocks.emplace_back(aUV.size());
        copyInto(frame.vecBlocks[0].data(), planes.aY);
        copyInto(frame.vecBlocks[1].data(), aUV);
        frame.desc.pPlaneY = frame.vecBlocks[0].data();
        frame.desc.pPlaneUV = frame.vecBlocks[1].data();
        return frame;
    }
    aUV.resize(nLuma * 3 / 2 - nLuma, 0x5A);
    frame.vecBlocks.emplace_back(nLuma * 3 / 2);
    copyInto(frame.vecBlocks[0].data(), planes.aY);
    copyInto(frame.vecBlocks[0].data() + nLuma, aUV);
    frame.desc.pFrameData = frame.vecBlocks[0].data();
    return frame;
}

} // namespace

Planes makePlanes(Pattern pattern, int nWidth, int nHeight, uint32_t nSeed)
{
    Planes planes;
    planes.nWidth = nWidth;
    planes.nHeight = nHeight;
    planes.aY = makePlane(pattern, {nWidth, nHeight, 0}, nSeed);
    planes.aU = makePlane(pattern, {planes.chromaWidth(), planes.chromaHeight(), 1}, nSeed);
    planes.aV = makePlane(pattern, {planes.chromaWidth(), planes.chromaHeight(), 2}, nSeed);
    return planes;
}

Planes solidPlanes(int nWidth, int nHeight, uint8_t nY, uint8_t nU, uint8_t nV)
{
    Planes planes;
    planes.nWidth = nWidth;
    planes.nHeight = nHeight;
    const auto nChroma =
        static_cast<size_t>(planes.chromaWidth()) * static_cast<size_t>(planes.chromaHeight());
    planes.aY.assign(static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight), nY);
    planes.aU.assign(nChroma, nU);
    planes.aV.assign(nChroma, nV);
    return planes;
}

HostFrame yv12Frame(const Planes &planes)
{
    HostFrame frame = frameOfSize(planes, VIDEO_DISPLAY_YV12);
    const size_t nLuma = planes.aY.size();
    const size_t nBytes = nLuma * 3 / 2;
    frame.vecBlocks.emplace_back(nBytes);
    uint8_t *pData = frame.vecBlocks[0].data();
    std::memset(pData, 0x5A, nBytes);
    copyInto(pData, planes.aY);
    copyInto(pData + nLuma, planes.aU);
    copyInto(pData + nLuma * 5 / 4, planes.aV);
    frame.desc.pFrameData = pData;
    return frame;
}

HostFrame nv12Frame(const Planes &planes, const Nv12Layout &layout)
{
    const int nPaddedHeight = (planes.nHeight + 15) / 16 * 16;
    const int nPitch = layout.nPitch;
    if (nPitch == 0 || (nPitch == planes.nWidth && nPaddedHeight == planes.nHeight)) {
        HostFrame frame = packedNv12(planes, layout.blPlanePointers);
        frame.desc.nPitch = nPitch;
        return frame;
    }
    HostFrame frame = frameOfSize(planes, VIDEO_DISPLAY_NV12);
    frame.desc.nPitch = nPitch;
    const std::vector<uint8_t> aUV = interleave(planes);
    const int nWidth = planes.nWidth;
    const int nRows = planes.nHeight;
    const size_t nLuma = rowsSize(nPitch, nWidth, nRows);
    const size_t nChroma = rowsSize(nPitch, nWidth, planes.chromaHeight());
    const int nSourceRow = 2 * planes.chromaWidth();
    if (layout.blPlanePointers) {
        frame.vecBlocks.emplace_back(nLuma);
        frame.vecBlocks.emplace_back(nChroma);
        fillRows(frame.vecBlocks[0].data(), nLuma, nPitch, nWidth, nRows, planes.aY, nWidth);
        fillRows(frame.vecBlocks[1].data(), nChroma, nPitch, nWidth, planes.chromaHeight(), aUV, nSourceRow);
        frame.desc.pPlaneY = frame.vecBlocks[0].data();
        frame.desc.pPlaneUV = frame.vecBlocks[1].data();
        return frame;
    }
    const size_t nOffset = static_cast<size_t>(nPitch) * static_cast<size_t>(nPaddedHeight);
    const size_t nBytes = nChroma > 0 ? nOffset + nChroma : nLuma;
    frame.vecBlocks.emplace_back(nBytes);
    uint8_t *pData = frame.vecBlocks[0].data();
    std::memset(pData, 0x3C, nBytes);
    fillRows(pData, nLuma, nPitch, nWidth, nRows, planes.aY, nWidth);
    if (nChroma > 0) {
        fillRows(pData + nOffset, nChroma, nPitch, nWidth, planes.chromaHeight(), aUV, nSourceRow);
    }
    frame.desc.pFrameData = pData;
    return frame;
}

int32_t show(void *handle, const HostFrame &frame)
{
    return Xelt_ShowYuvFrame(handle, &frame.desc, XELT_FRAME_DESC_SIZE);
}

} // namespace xelttest
