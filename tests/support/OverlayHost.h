// A host that answers the overlay callback with a fixed list of records.
#pragma once

#include "XeltRender.h"

#include <atomic>
#include <initializer_list>
#include <utility>
#include <vector>

namespace xelttest {

using PointList = std::vector<std::pair<int, int>>;

// A record with its points; more than 32 are counted but only 32 stored.
XeltDrawInfo overlayRecord(int nType, const PointList &points, uint32_t nColor, int nSize = 1,
                           float fOpacity = 0.0f);
constexpr uint32_t overlayColour(unsigned nRed, unsigned nGreen, unsigned nBlue)
{
    return nRed | nGreen << 8 | nBlue << 16;
}

// Register it with setDrawInfoCallback(handle, &OverlayHost::callback, &host). It must outlive the pane's use
// of it. Records may be changed only while no frame is being submitted.
struct OverlayHost
{
    std::vector<XeltDrawInfo> vecRecords;
    int nRecordBytes = XELT_DRAWINFO_SIZE; // length passed with each record
    std::atomic<int> nCalls{0};
    XeltDrawInfoRequest lastRequest{};

    static int32_t callback(void *pReserved, const XeltDrawInfoRequest *pRequest, int32_t nLength,
                            void *pUser);
};

} // namespace xelttest
