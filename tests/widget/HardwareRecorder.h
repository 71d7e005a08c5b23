// A hardware path that draws nothing and notes what it is asked.
#pragma once

#include "d3d11/CLS_D3D11EGL.h"

#include <QThread>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace xelttest {

// Outlives the recorder, so that its end is noted too.
struct HardwareNotes
{
    std::vector<std::string> vecCalls;
    std::vector<uint8_t> aFrame; // the bytes of the last descriptor
    const void *pFrame = nullptr;
    QThread *pDestroyedOn = nullptr;
    bool blDestroyed = false;
    bool blHoldsContextObjects = true;
    int nInitResult = 0;
    int nRenderResult = 0;

    void note(const std::string &sCall) { vecCalls.push_back(sCall); }
    std::vector<std::string> take() { return std::exchange(vecCalls, {}); }
};

class HardwareRecorder : public CLS_D3D11EGL
{
public:
    explicit HardwareRecorder(HardwareNotes &notes) : m_notes(notes) {}
    ~HardwareRecorder() override
    {
        m_notes.note("destroyed");
        m_notes.blDestroyed = true;
        m_notes.pDestroyedOn = QThread::currentThread();
    }
    HardwareRecorder(const HardwareRecorder &) = delete;
    HardwareRecorder &operator=(const HardwareRecorder &) = delete;

    int32_t SetDevice(void *pDevice) override
    {
        m_notes.note("SetDevice");
        m_pDevice = pDevice;
        return 0;
    }
    void *Device() const override { return m_pDevice; }
    int32_t SetFrame(const void *pData, int32_t nLength) override
    {
        const auto *pBytes = static_cast<const uint8_t *>(pData);
        m_notes.note("SetFrame " + std::to_string(nLength));
        m_notes.pFrame = pData;
        m_notes.aFrame.assign(pBytes, pBytes + nLength);
        return 0;
    }
    void ClearFramePending() override { m_notes.note("ClearFramePending"); }
    int32_t InitD3D11EGL() override
    {
        m_notes.note("InitD3D11EGL");
        return m_notes.nInitResult;
    }
    int32_t DrawFlagLocation() const override { return 41; }
    int32_t DrawColorLocation() const override { return 42; }
    int32_t DrawAlphaLocation() const override { return 43; }
    bool BindProgram() override
    {
        m_notes.note("BindProgram");
        return false;
    }
    void SetAreas(const geometry::NormRect &rcDrawArea, const geometry::NormRect &rcEZoom) override
    {
        std::ostringstream text;
        for (const geometry::NormRect &rc : {rcDrawArea, rcEZoom}) {
            text << ' ' << rc.left << ',' << rc.top << ',' << rc.right << ',' << rc.bottom;
        }
        m_notes.note("SetAreas" + text.str());
    }
    void SetRotation(int32_t nDirection, int32_t nAngle, int32_t nMirror) override
    {
        m_notes.note("SetRotation " + std::to_string(nDirection) + ' ' + std::to_string(nAngle) + ' ' +
                     std::to_string(nMirror));
    }
    int32_t Render(const QRect &rect) override
    {
        m_notes.note("Render " + std::to_string(rect.x()) + ' ' + std::to_string(rect.y()) + ' ' +
                     std::to_string(rect.width()) + ' ' + std::to_string(rect.height()));
        return m_notes.nRenderResult;
    }
    void ReleaseHostObjects() override { m_notes.note("ReleaseHostObjects"); }
    bool HoldsContextObjects() const override { return m_notes.blHoldsContextObjects; }
    void ReleaseEGL() override { m_notes.note("ReleaseEGL"); }
    void DestroyEglResource() override { m_notes.note("DestroyEglResource"); }
    void ReleaseContextObjects() override { m_notes.note("ReleaseContextObjects"); }

private:
    HardwareNotes &m_notes;
    void *m_pDevice = nullptr;
};

} // namespace xelttest
