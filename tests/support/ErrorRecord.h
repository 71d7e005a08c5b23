// Error records in the core library's log: lock, date, position line, message.
#pragma once

#include "CoreLog.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace xelttest {

// Whether the text is the position line of the file and function, with a line number above 0.
inline testing::AssertionResult isPositionLine(const std::string &sText, const std::string &sFile,
                                               const std::string &sFunction)
{
    const std::string sHead = "file: " + sFile + ", func:" + sFunction + ", line: ";
    if (sText.compare(0, sHead.size(), sHead) != 0) {
        return testing::AssertionFailure() << '"' << sText << "\" does not begin with \"" << sHead << '"';
    }
    char *pEnd = nullptr;
    const long nLine = std::strtol(sText.c_str() + sHead.size(), &pEnd, 10);
    const std::string sExpected = sHead + std::to_string(nLine) + " ";
    if (nLine < 1 || sText != sExpected) {
        return testing::AssertionFailure() << '"' << sText << "\" has no line number and blank at its end";
    }
    return testing::AssertionSuccess();
}

// Whether the four calls at nAt are one error record with this text.
inline testing::AssertionResult isErrorRecord(const std::vector<CoreLogRecord> &vecRecords, size_t nAt,
                                              const std::string &sFile, const std::string &sFunction,
                                              const std::string &sText)
{
    if (vecRecords.size() < nAt + 4) {
        return testing::AssertionFailure() << "only " << vecRecords.size() << " calls";
    }
    const CoreLogRecord *pCalls = &vecRecords[nAt];
    if (pCalls[0].nKind != CORELOG_BUF_LOCK || pCalls[1].nKind != CORELOG_BUF_DATE ||
        pCalls[2].nKind != CORELOG_BUF_MSG) {
        return testing::AssertionFailure()
               << "calls are " << pCalls[0] << ", " << pCalls[1] << ", " << pCalls[2];
    }
    if (const auto position = isPositionLine(pCalls[2].sText, sFile, sFunction); !position) {
        return position;
    }
    if (!(pCalls[3] == CoreLogRecord{CORELOG_ERR_MSG_UNLOCK, sText, 0})) {
        return testing::AssertionFailure() << "the last call is " << pCalls[3];
    }
    return testing::AssertionSuccess();
}

} // namespace xelttest
