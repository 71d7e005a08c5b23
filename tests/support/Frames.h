// Test frames: pictures in planes, and the host memory and descriptor that carry them.
#pragma once

#include "GuardedBytes.h"
#include "XeltRender.h"

#include <cstdint>
#include <vector>

namespace xelttest {

enum class Pattern {
    Ramp,    // smooth gradients, different in every plane
    Bars,    // flat colour patches with hard edges
    Noise,   // deterministic random bytes
    Checker, // squares of 8 pixels
    Card     // all of these side by side, without symmetry
};

// 4:2:0 planes; chroma is (width / 2) x (height / 2), rounded down and possibly empty.
struct Planes
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<uint8_t> aY;
    std::vector<uint8_t> aU;
    std::vector<uint8_t> aV;

    int chromaWidth() const { return nWidth / 2; }
    int chromaHeight() const { return nHeight / 2; }
};

Planes makePlanes(Pattern pattern, int nWidth, int nHeight, uint32_t nSeed = 1);
Planes solidPlanes(int nWidth, int nHeight, uint8_t nY, uint8_t nU, uint8_t nV);

// A frame in host memory. The blocks are exactly as large as what a submission may read and end at guard
// pages.
struct HostFrame
{
    VideoFrameDesc desc{};
    std::vector<GuardedBytes> vecBlocks; // own what desc points to
};

// YV12 at pFrameData: luma, U, V one after another; odd sizes get filler so that the block has
// width x height x 3 / 2 bytes, with the third plane at width x height x 5 / 4. nDataLen stays 0.
HostFrame yv12Frame(const Planes &planes);

struct Nv12Layout
{
    int nPitch = 0;              // 0: packed rows; otherwise at least the width
    bool blPlanePointers = true; // false: everything behind pFrameData, chroma at pitch x height padded to 16
};
HostFrame nv12Frame(const Planes &planes, const Nv12Layout &layout = {});

int32_t show(void *handle, const HostFrame &frame);

} // namespace xelttest
