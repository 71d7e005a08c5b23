#include "Decoders.h"

#include "ImageCompare.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <thread>

namespace xelttest {

namespace {

constexpr int k_nAttempts = 40;

HostFrame ofType(HostFrame frame, int nType)
{
    frame.desc.nDisplayType = nType;
    return frame;
}

XeltDrawInfo shape(int nType, uint32_t nColor, int nPoints, const XeltDrawInfoRequest &request, int nPhase)
{
    XeltDrawInfo record{};
    record.nType = nType;
    record.nColor = nColor;
    record.nSize = 1 + nPhase % 5;
    record.nPointNum = nPoints;
    record.fOpacity = 0.5f;
    for (int i = 0; i < nPoints; ++i) {
        record.aPoints[i].x = (i * 13 + nPhase) % (request.nWidth + 1);
        record.aPoints[i].y = (i * 29 + nPhase * 3) % (request.nHeight + 1);
    }
    return record;
}

XeltDrawInfo label(int nPhase)
{
    XeltDrawInfo record{};
    record.nType = DRAWINFO_TEXT;
    record.nColor = 0x00FFFFFF;
    record.nSize = 6;
    record.nPointNum = 2;
    record.aPoints[0] = {2, nPhase % 20 - 4};
    record.aPoints[1] = {60, nPhase % 20 + 12};
    record.nTextEncoding = DRAWINFO_ENCODING_UTF8;
    std::strcpy(record.aText, nPhase % 2 == 0 ? "even" : "odd");
    return record;
}

} // namespace

std::vector<HostFrame> mixedFrames()
{
    std::vector<HostFrame> vecFrames;
    const QSize aSizes[] = {{64, 48}, {33, 27}, {96, 80}, {2, 2}, {48, 64}, {1, 1}, {80, 31}};
    uint32_t nSeed = 1;
    for (const QSize &size : aSizes) {
        const Planes planes = makePlanes(Pattern::Card, size.width(), size.height(), nSeed++);
        vecFrames.push_back(yv12Frame(planes));
        vecFrames.push_back(nv12Frame(planes, {0, true}));
        vecFrames.push_back(nv12Frame(planes, {size.width() + 5, false}));
        vecFrames.push_back(yv12Frame(planes));
        vecFrames.back().desc.nDataLen = size.width() * size.height() * 3 / 2;
    }
    // Types without a picture of their own, the one that counts as a change every time among them.
    const Planes planes = makePlanes(Pattern::Ramp, 40, 40);
    for (const int nType : {4, 4, 5, 7, 8}) {
        vecFrames.push_back(ofType(yv12Frame(planes), nType));
    }
    return vecFrames;
}

std::vector<ColourFrame> colourFrames()
{
    struct Colour
    {
        uint8_t nY, nU, nV;
    };
    const Colour aColours[] = {
        {235, 128, 128}, {81, 90, 240}, {145, 54, 34}, {41, 240, 110}, {120, 128, 128}};
    const QSize aSizes[] = {{64, 48}, {320, 240}, {16, 128}, {640, 360}};
    std::vector<ColourFrame> vecFrames;
    for (const QSize &size : aSizes) {
        for (const Colour &colour : aColours) {
            const Planes planes = solidPlanes(size.width(), size.height(), colour.nY, colour.nU, colour.nV);
            const bool blNv12 = vecFrames.size() % 2 != 0;
            ColourFrame entry{blNv12 ? nv12Frame(planes) : yv12Frame(planes), {}};
            View view;
            view.widgetSize = QSize(2, 2);
            const ReferenceImage expected = renderPicture(bufferModel(entry.frame.desc), view);
            for (size_t i = 0; i < 3; ++i) {
                entry.aRgb[i] = static_cast<int>(std::lround(expected.pixel(0, 0)[i]));
            }
            vecFrames.push_back(std::move(entry));
        }
    }
    return vecFrames;
}

bool push(void *handle, const HostFrame &frame, Pushed &pushed)
{
    for (int nAttempt = 0; nAttempt < k_nAttempts; ++nAttempt) {
        if (show(handle, frame) == 0) {
            ++pushed.nAccepted;
            return true;
        }
        ++pushed.nRefused;
    }
    ++pushed.nLost;
    return false;
}

void pushMany(void *handle, const std::vector<HostFrame> &vecFrames, int nFirst, int nCount, Pushed &pushed,
              const std::atomic<bool> &blStop)
{
    for (int i = 0; i < nCount && !blStop; ++i) {
        push(handle, vecFrames[static_cast<size_t>(nFirst + i) % vecFrames.size()], pushed);
        // As a stream does, or the GUI thread would only ever hear of the next frame.
        std::this_thread::sleep_for(std::chrono::milliseconds(i % 5 * 3));
    }
}

int32_t Overlays::deliver(void *, const XeltDrawInfoRequest *pRequest, int32_t, void *pUser)
{
    auto *pThis = static_cast<Overlays *>(pUser);
    const int nPhase = ++pThis->nRequests;
    const XeltDrawInfo aRecords[] = {shape(DRAWINFO_POLYLINE, 0x0000FF00, 7, *pRequest, nPhase),
                                     shape(DRAWINFO_OUTLINE, 0x000000FF, 32, *pRequest, nPhase),
                                     shape(DRAWINFO_FILLED_AREA, 0x00FF0000, 4, *pRequest, nPhase),
                                     label(nPhase)};
    for (const XeltDrawInfo &record : aRecords) {
        ++(pRequest->pfnReceiver(&record, sizeof record, pRequest->pObject) == 0 ? pThis->nDelivered
                                                                                 : pThis->nRejected);
    }
    return 0;
}

const Planes &finalPlanes()
{
    static const Planes planes = makePlanes(Pattern::Card, 72, 56, 99);
    return planes;
}

::testing::AssertionResult showsFinalPicture(void *handle)
{
    drainEvents();
    View view;
    view.widgetSize = paneWidget(handle)->size();
    // The sub-image renderer places its picture by the zoom window alone.
    if (!paneWidget(handle)->inherits("CLS_ShaderYuvSubImage")) {
        view.area = ratioArea(view.widgetSize, finalPlanes().nWidth, finalPlanes().nHeight, 1);
    }
    static const HostFrame frame = yv12Frame(finalPlanes());
    // Wide enough for the driver's coarse interpolation between noisy pixels; a picture that is turned,
    // shifted or another frame's is far outside.
    return imageMatches(grab(handle), renderPicture(bufferModel(frame.desc), view), {8.0, 1.0, 0.1});
}

::testing::AssertionResult pushFinalPicture(void *handle)
{
    const HostFrame frame = yv12Frame(finalPlanes());
    Pushed pushed;
    push(handle, frame, pushed); // a clear that is still pending resets parameters
    const bool blReset = setRotation(handle, 0, 0, 0) == 0 && setZoom(handle, 0.0, 0.0, 1.0, 1.0) == 0 &&
                         setRatioMode(handle, 1) == 0 && setReserveLastFrame(handle, 0) == 0 &&
                         setDrawInfoCallback(handle, nullptr, nullptr) == 0;
    if (!blReset) {
        return ::testing::AssertionFailure() << "a parameter was refused";
    }
    if (!push(handle, frame, pushed)) {
        return ::testing::AssertionFailure() << "the frame was refused";
    }
    return ::testing::AssertionSuccess();
}

} // namespace xelttest
