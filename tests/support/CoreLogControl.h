// What the recording core library (Ombrix.dll beside the test executables) exports besides the six logging
// functions. Tests use it through CoreLog.h; this header holds only what both sides must agree on.
#pragma once

#include <cstdint>

extern "C" {

enum CoreLogKind : int32_t {
    CORELOG_MSG,            // sdk_log_msg(text)
    CORELOG_BUF_LOCK,       // sdk_log_buf_lock()
    CORELOG_BUF_DATE,       // sdk_log_buf_date()
    CORELOG_BUF_MSG,        // sdk_log_buf_msg(text)
    CORELOG_ERR_MSG_UNLOCK, // sdk_err_buf_msg_unlock(text)
    CORELOG_GET_LEVEL       // sdk_log_get_level(); counted, never kept as a record
};

// One call, as handed to a hook or a visitor. The text is valid during the call only; empty where the
// function takes none.
struct CoreLogCall
{
    CoreLogKind nKind;
    const char *pText;
    uint64_t nThread; // equal for equal threads
};

typedef void (*CoreLogHook)(const CoreLogCall *pCall, void *pUser);

// The functions behind the one exported name "xelt_corelog_control", which returns the address of this table.
struct CoreLogControl
{
    void (*pfnClear)();                                    // drops all records and counts
    void (*pfnSetLevels)(int32_t nFirst, int32_t nSecond); // what sdk_log_get_level answers; at first 200, 0
    // Called in every one of the six functions, on the calling thread, after recording and with no lock of
    // the recorder's record list held. A hook may block. Null: none.
    void (*pfnSetHook)(CoreLogHook pfnHook, void *pUser);
    void (*pfnVisit)(CoreLogHook pfnVisitor, void *pUser); // each record in order
    uint64_t (*pfnCalls)(CoreLogKind nKind);               // calls since the last clear
};

typedef const CoreLogControl *(*CoreLogControlFunction)();

} // extern "C"
