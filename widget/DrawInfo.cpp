// The overlay records of CLS_ShaderBase: asking the host for them and keeping what it delivers.
#include "widget/CLS_ShaderBase.h"

#include <QMutexLocker>
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// The right and bottom edges do not count from the widget's own corner, deliberately: hosts expect it so.
XeltDrawInfoRequest MakeRequest(int32_t nKind, const QRect &rcWidget, const geometry::NormRect &rcArea)
{
    XeltDrawInfoRequest request = {};
    request.nKind = nKind;
    request.nLeft = geometry::TruncateToInt(rcWidget.left() + rcWidget.width() * rcArea.left);
    request.nTop = geometry::TruncateToInt(rcWidget.top() + rcWidget.height() * rcArea.top);
    request.nRight = geometry::TruncateToInt(rcWidget.width() * rcArea.right);
    request.nBottom = geometry::TruncateToInt(rcWidget.height() * rcArea.bottom);
    const int64_t nWidth = std::abs(int64_t{request.nRight} - request.nLeft);
    const int64_t nHeight = std::abs(int64_t{request.nBottom} - request.nTop);
    request.nWidth = geometry::TruncateToInt(static_cast<double>(nWidth));
    request.nHeight = geometry::TruncateToInt(static_cast<double>(nHeight));
    return request;
}

// The request for overlay records that the host is answering on this thread.
struct RunningRequest
{
    const CLS_ShaderBase *pRenderer;
    uint64_t nNumber;
};
thread_local RunningRequest t_request = {nullptr, 0};

class RequestScope
{
public:
    explicit RequestScope(const RunningRequest &request) : m_outer(t_request) { t_request = request; }
    ~RequestScope() { t_request = m_outer; }
    RequestScope(const RequestScope &) = delete;
    RequestScope &operator=(const RequestScope &) = delete;

private:
    const RunningRequest m_outer;
};

} // namespace

void CLS_ShaderBase::ClearDrawInfo()
{
    const QMutexLocker locker(&m_mutexDrawInfo);
    m_vecDrawInfo.clear();
}

bool CLS_ShaderBase::HasDrawInfo()
{
    const QMutexLocker locker(&m_mutexDrawInfo);
    return !m_vecDrawInfo.isEmpty();
}

QVector<XeltDrawInfo> CLS_ShaderBase::DrawInfo()
{
    const QMutexLocker locker(&m_mutexDrawInfo);
    return m_vecDrawInfo;
}

bool CLS_ShaderBase::RenewDrawInfo(int32_t nKind, int32_t &nKeptKind)
{
    const bool blHadDrawInfo = HasDrawInfo();
    ClearDrawInfo();
    NotifyDrawInfo(nKind, nKeptKind);
    return blHadDrawInfo || HasDrawInfo();
}

bool CLS_ShaderBase::RepeatDrawInfo(int32_t &nKeptKind)
{
    int32_t nKind = 0;
    {
        const QMutexLocker locker(&m_mutexDrawInfo);
        nKind = nKeptKind;
    }
    return RenewDrawInfo(nKind, nKeptKind);
}

void CLS_ShaderBase::ForgetDrawInfoCallback()
{
    const QMutexLocker locker(&m_mutexDrawInfo);
    m_pfnDrawInfo = nullptr;
}

int32_t CLS_ShaderBase::NotifyDrawInfo(int32_t nKind, int32_t &nKeptKind)
{
    XeltDrawInfoCallbackPara callback = {};
    RunningRequest running = {this, 0};
    {
        const QMutexLocker locker(&m_mutexDrawInfo);
        callback = {m_pfnDrawInfo, m_pDrawInfoUser};
        if (callback.pfnCallback == nullptr) {
            return 0;
        }
        nKeptKind = nKind;
        // A resize and a submission may ask at the same time: only the later one's records count.
        m_vecDrawInfo.clear();
        running.nNumber = ++m_nDrawInfoRequest;
    }
    XeltDrawInfoRequest request = MakeRequest(nKind, rect(), CurrentPicture().rcDrawArea);
    request.pfnReceiver = &CLS_ShaderBase::ReceiveDrawInfo;
    request.pObject = this;
    const RequestScope scope(running);
    try {
        return callback.pfnCallback(nullptr, &request, XELT_DRAWINFO_REQUEST_SIZE, callback.pUser);
    } catch (...) {
        return -1; // what a host's callback throws must not run through Qt's event loop
    }
}

int32_t CLS_ShaderBase::ReceiveDrawInfo(const void *pRecord, int32_t nLength, void *pObject)
{
    if (pRecord == nullptr || pObject == nullptr || nLength < 1) {
        return -1;
    }
    try {
        return static_cast<CLS_ShaderBase *>(pObject)->AppendDrawInfo(pRecord, static_cast<size_t>(nLength));
    } catch (...) {
        return -1;
    }
}

int32_t CLS_ShaderBase::AppendDrawInfo(const void *pRecord, size_t nLength)
{
    XeltDrawInfo record = {};
    std::memcpy(&record, pRecord, std::min(nLength, sizeof(record)));
    const QMutexLocker locker(&m_mutexDrawInfo);
    const bool blSuperseded = t_request.pRenderer == this && t_request.nNumber != m_nDrawInfoRequest;
    if (!blSuperseded) {
        m_vecDrawInfo.append(record);
    }
    return 0;
}
