// A pane whose Direct3D and EGL calls are made to fail, and what is said about it.
#pragma once

#include "ErrorRecord.h"
#include "HardwarePane.h"
#include "SourceLine.h"

#include <string>
#include <vector>

namespace xelttest {

constexpr int32_t k_nEglBadAlloc = 0x3003; // 12291

// An error report: source file, function, text, and the line where that is laid down. Elsewhere it is the line
// in the source that reports.
struct Report
{
    std::string sFile;
    std::string sFunction;
    std::string sText;
    int nLine = 0;
};

inline Report reportOf(const std::string &sFunction, const std::string &sText)
{
    return {"CLS_D3D11EGL", "CLS_D3D11EGL::" + sFunction, sText};
}

inline const Report k_noSurface = reportOf("Map", "[CLS_D3D11EGL::Map] EnsureSurface fail!");
inline const Report k_noProcess = reportOf("Map", "[CLS_D3D11EGL::Map] m_pD3Dvp->process fail!");
inline const Report k_noExtension =
    reportOf("EnsureSurface", "EGL extension 'ANGLE_d3d_share_handle_client_buffer' is required!");

// Whether the log's error records are these, in this order, and nothing else.
inline testing::AssertionResult reportsAre(const std::vector<Report> &vecExpected)
{
    std::vector<CoreLogRecord> vecRecords;
    for (const CoreLogRecord &record : CoreLog::instance().records()) {
        if (record.nKind != CORELOG_MSG) {
            vecRecords.push_back(record);
        }
    }
    if (vecRecords.size() != 4 * vecExpected.size()) {
        return testing::AssertionFailure()
               << vecRecords.size() / 4 << " reports and not " << vecExpected.size() << ": "
               << testing::PrintToString(CoreLog::instance().errors());
    }
    for (size_t i = 0; i < vecExpected.size(); ++i) {
        const Report &report = vecExpected[i];
        const auto same = isErrorRecord(vecRecords, 4 * i, report.sFile, report.sFunction, report.sText);
        const std::string sLine = ", line: " + std::to_string(report.nLine) + " ";
        const std::string &sPosition = vecRecords[4 * i + 2].sText;
        if (!same || (report.nLine != 0 && sPosition.find(sLine) == std::string::npos)) {
            return testing::AssertionFailure() << "report " << i << ": " << same.message() << sPosition;
        }
        if (report.nLine == 0) { // the report's own
            if (const auto leads = leadsToReport(sPosition, report.sText); !leads) {
                return leads;
            }
        }
    }
    return testing::AssertionSuccess();
}

// What Qt says of a result code, by which it asks the system.
inline std::string systemText(HRESULT hr)
{
    return qt_error_string(hr).toStdString();
}

// Two sizes by turns, so that every frame needs another surface.
class InteropFailure : public HardwarePane
{
protected:
    void SetUp() override
    {
        HardwarePane::SetUp();
        open(QSize(96, 64));
        m_device = makeDevice();
        for (const QSize &size : {QSize(96, 64), QSize(64, 48)}) {
            m_vecArrays.emplace_back(m_device, size);
        }
        CoreLog::instance().clear();
    }
    void TearDown() override
    {
        m_vecArrays.clear();
        HardwarePane::TearDown();
    }

    int32_t frame(uint32_t nSeed)
    {
        DecoderTextures &array = m_vecArrays[nSeed % 2];
        return submitSlice(array,
                           makePlanes(Pattern::Card, array.size().width(), array.size().height(), nSeed));
    }
    // What has come on Qt's channels since the last call, but for debug lines.
    std::vector<std::string> warnings()
    {
        std::vector<std::string> vecTexts;
        for (const QtMessage &message : m_messages.take()) {
            if (message.type != QtDebugMsg) {
                vecTexts.push_back(message.sText);
            }
        }
        return vecTexts;
    }

    std::vector<DecoderTextures> m_vecArrays;
    QtMessages m_messages;
};

} // namespace xelttest
