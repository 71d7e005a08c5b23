// What decoding threads push, and what a pane has to show afterwards.
#pragma once

#include "Frames.h"
#include "HostWindow.h"
#include "Reference.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

namespace xelttest {

// Frames of all software types, in sizes that differ from one to the next. Read only once made.
std::vector<HostFrame> mixedFrames();

struct ColourFrame
{
    HostFrame frame;
    std::array<int, 3> aRgb; // what the whole pane shows
};
// One colour each, YV12 and NV12 by turns, in several sizes.
std::vector<ColourFrame> colourFrames();

// What one thread pushed. Written by that thread; read when it has ended.
struct Pushed
{
    int nAccepted = 0;
    int nRefused = 0; // times that the pane was too busy
    int nLost = 0;    // frames refused again and again
};

// Pushes a frame until it is accepted: a pane may refuse one while it is busy.
bool push(void *handle, const HostFrame &frame, Pushed &pushed);
// Pushes nCount frames of the list, beginning at nFirst, unless told to stop.
void pushMany(void *handle, const std::vector<HostFrame> &vecFrames, int nFirst, int nCount, Pushed &pushed,
              const std::atomic<bool> &blStop);

// An overlay host: delivers a line, an outline, a blended area and a label for every request.
struct Overlays
{
    std::atomic<int> nRequests{0};
    std::atomic<int> nDelivered{0};
    std::atomic<int> nRejected{0};

    static int32_t deliver(void *pReserved, const XeltDrawInfoRequest *pRequest, int32_t nLength,
                           void *pUser);
};

// A frame that every part of a picture can be told by, not of any size that mixedFrames has.
const Planes &finalPlanes();
// Whether the pane shows that picture, unturned and filling it, once the events so far are handled.
::testing::AssertionResult showsFinalPicture(void *handle);
// Resets the parameters, takes the overlay callback away and pushes the frame.
::testing::AssertionResult pushFinalPicture(void *handle);

} // namespace xelttest
