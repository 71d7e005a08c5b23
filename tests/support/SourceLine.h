// The source line that an error record names.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace xelttest {

// The statement that a line of one of the library's files belongs to, on one line; empty when there is no such line.
inline std::string statementAt(const std::string &sFile, int nLine)
{
    std::ifstream file;
    for (const char *pszFolder : {"interface", "yuv", "widget", "d3d11"}) {
        if (!file.is_open()) {
            file.open(std::string(XELT_SOURCE_DIR "/") + pszFolder + "/" + sFile + ".cpp");
        }
    }
    std::vector<std::string> vecLines;
    for (std::string sLine; std::getline(file, sLine);) {
        sLine.erase(sLine.find_last_not_of(" \r") + 1);
        vecLines.push_back(sLine);
    }
    const auto ends = [](const std::string &s) { return s.empty() || s.find_last_of(";{}") == s.size() - 1; };
    if (nLine < 1 || static_cast<size_t>(nLine) > vecLines.size()) {
        return {};
    }
    size_t nAt = static_cast<size_t>(nLine) - 1;
    while (nAt > 0 && !ends(vecLines[nAt - 1])) {
        --nAt;
    }
    std::string sStatement;
    for (; nAt < vecLines.size(); ++nAt) {
        sStatement += vecLines[nAt];
        if (ends(vecLines[nAt])) {
            break;
        }
    }
    return sStatement;
}

// Whether the line that a position line names holds the report of the text, or the call that leads to it.
inline testing::AssertionResult leadsToReport(const std::string &sPosition, const std::string &sText)
{
    std::smatch parts;
    if (!std::regex_match(sPosition, parts, std::regex("file: (\\w+), func:([\\w:]+), line: (\\d+) "))) {
        return testing::AssertionFailure() << '"' << sPosition << "\" is no position line";
    }
    const std::string sStatement = statementAt(parts[1], std::stoi(parts[3]));
    const size_t nEnd = sStatement.rfind('"');
    const size_t nBegin =
        nEnd == 0 || nEnd == std::string::npos ? std::string::npos : sStatement.rfind('"', nEnd - 1);
    if (nBegin != std::string::npos) {
        const std::string sLiteral = sStatement.substr(nBegin + 1, nEnd - nBegin - 1);
        const std::string sHead = sLiteral.substr(0, sLiteral.find('%'));
        const bool blReports = sStatement.find("XELT_REPORT_ERROR(") != std::string::npos;
        const bool blLeads = sStatement.find("XELT_POSITION(") != std::string::npos;
        if ((blReports && !sHead.empty() && sText.compare(0, sHead.size(), sHead) == 0) ||
            (blLeads && sLiteral == parts[2].str())) {
            return testing::AssertionSuccess();
        }
    }
    return testing::AssertionFailure()
           << sPosition << "is \"" << sStatement << "\", which does not report \"" << sText << '"';
}

} // namespace xelttest
