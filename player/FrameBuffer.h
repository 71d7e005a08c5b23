#pragma once

#include "FrameLayout.h"

#include <XeltRender.h>

#include <vector>

// A frame for the renderer, with the memory of its planes. Not shared between threads.
class FrameBuffer
{
public:
    // The samples of Y, U or V.
    struct Component
    {
        uint8_t *pData = nullptr;
        int nPitch = 0; // bytes from row to row
        int nStep = 1;  // bytes from sample to sample
        int nWidth = 0; // samples
        int nHeight = 0;
    };

    explicit FrameBuffer(FrameLayout layout) : m_layout(layout) {}

    // Makes it a frame for pictures of this size, at least 1x1. An odd last row or column is left out: 4:2:0
    // planes have none. Samples keep no value. What came before is void.
    void fit(int nPictureWidth, int nPictureHeight);

    // Whether U and V stand in turn in one plane.
    bool isInterleaved() const { return m_layout != FrameLayout::Yv12; }

    // Valid until the next fit(). nIndex: 0 Y, 1 U, 2 V.
    Component component(int nIndex);
    const VideoFrameDesc &desc() const { return m_desc; }

    // The size that fit() takes for such a picture.
    static int fittingWidth(int nPictureWidth, FrameLayout layout);
    static int fittingHeight(int nPictureHeight);

private:
    int pitch() const;
    int rows() const;

    FrameLayout m_layout;
    VideoFrameDesc m_desc{};
    std::vector<uint8_t> m_buffer;
};
