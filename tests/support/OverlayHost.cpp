#include "OverlayHost.h"

#include <algorithm>

namespace xelttest {

XeltDrawInfo overlayRecord(int nType, const PointList &points, uint32_t nColor, int nSize, float fOpacity)
{
    XeltDrawInfo record{};
    record.nType = nType;
    record.nColor = nColor;
    record.nSize = nSize;
    record.nPointNum = static_cast<int32_t>(points.size());
    record.fOpacity = fOpacity;
    const size_t nStored = std::min<size_t>(points.size(), XELT_DRAWINFO_MAX_POINTS);
    for (size_t i = 0; i < nStored; ++i) {
        record.aPoints[i] = {points[i].first, points[i].second};
    }
    return record;
}

int32_t OverlayHost::callback(void *, const XeltDrawInfoRequest *pRequest, int32_t, void *pUser)
{
    auto *pHost = static_cast<OverlayHost *>(pUser);
    ++pHost->nCalls;
    pHost->lastRequest = *pRequest;
    int32_t nResult = 0;
    for (const XeltDrawInfo &record : pHost->vecRecords) {
        nResult |= pRequest->pfnReceiver(&record, pHost->nRecordBytes, pRequest->pObject);
    }
    return nResult;
}

} // namespace xelttest
