// Sees what the library registers with Qt's resource system, and reads the tables.
#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <vector>

namespace xelttest {

// The arguments of one call.
struct ResourceCall
{
    bool blRegister = false;
    int nVersion = 0;
    const unsigned char *pTree = nullptr;
    const unsigned char *pNames = nullptr;
    const unsigned char *pPayload = nullptr;
    std::string sModule; // the file that holds the tree

    bool sameTables(const ResourceCall &other) const;
};

// The calls since the start or the last clear, for tables in a module whose file name contains sModule. Calls
// come while modules are loaded and unloaded; single-threaded.
std::vector<ResourceCall> resourceCalls(const std::string &sModule);
void clearResourceCalls();

// One file of a tree of format version 2 or 3.
struct ResourceFile
{
    QString sPath; // ":/..."
    int nFlags = 0;
    int nCountry = 0;
    int nLanguage = 0;
    uint64_t nModified = 0; // milliseconds since the epoch
    std::string sContents;  // the payload as it lies there
};

// All files, in the tree's order. The tables must still be loaded.
std::vector<ResourceFile> filesOf(const ResourceCall &call);

} // namespace xelttest
