// The test's view of the recording core library that the library under test logs to.
//
// The recorder is the file Ombrix.dll beside the running executable; instance() loads it (the loader hands
// out the same module to the library under test). A test whose executable lies in a folder without that file
// asks isPresent() first. Thread: any.
#pragma once

#include "CoreLogControl.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace xelttest {

struct CoreLogRecord
{
    CoreLogKind nKind;
    std::string sText;
    uint64_t nThread;
};

bool operator==(const CoreLogRecord &a, const CoreLogRecord &b); // kind and text
std::ostream &operator<<(std::ostream &stream, const CoreLogRecord &record);

class CoreLog
{
public:
    static CoreLog &instance();

    bool isPresent() const { return m_pControl != nullptr; }
    // Drops the records, sets the levels to 200 and 0 and removes the hook.
    void reset();
    void clear();
    void setLevels(int nFirst, int nSecond);
    // The hook runs on the logging thread inside the library's call. It may block and may read the records.
    // Set and remove it only while no other thread logs.
    void setHook(std::function<void(const CoreLogRecord &)> hook);

    std::vector<CoreLogRecord> records() const;
    // Texts of the plain messages (sdk_log_msg), in order.
    std::vector<std::string> messages() const;
    // Texts of the error records (sdk_err_buf_msg_unlock), in order.
    std::vector<std::string> errors() const;
    // How many records of any kind contain the text.
    int count(const std::string &sPart) const;
    uint64_t calls(CoreLogKind nKind) const;

private:
    CoreLog();

    const CoreLogControl *m_pControl = nullptr;
    std::function<void(const CoreLogRecord &)> m_hook;
};

} // namespace xelttest
