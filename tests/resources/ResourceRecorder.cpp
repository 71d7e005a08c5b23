#include "ResourceRecorder.h"

#include <QtEndian>
#include <QtGlobal>

#include <dlfcn.h>

#include <cstdlib>

namespace {

using Registration = bool (*)(int, const unsigned char *, const unsigned char *, const unsigned char *);

// Made on first use and never destroyed: Qt's libraries call before this file's initialisers, and at exit.
std::vector<xelttest::ResourceCall> &calls()
{
    static auto &vecCalls = *new std::vector<xelttest::ResourceCall>;
    return vecCalls;
}

bool record(bool blRegister, const char *pszNext, int nVersion, const unsigned char *pTree,
            const unsigned char *pNames, const unsigned char *pPayload)
{
    Dl_info info{};
    if (dladdr(pTree, &info) == 0 || info.dli_fname == nullptr) {
        std::abort();
    }
    calls().push_back({blRegister, nVersion, pTree, pNames, pPayload, info.dli_fname});
    const auto pfnNext = reinterpret_cast<Registration>(dlsym(RTLD_NEXT, pszNext));
    if (pfnNext == nullptr) {
        std::abort();
    }
    return pfnNext(nVersion, pTree, pNames, pPayload);
}

constexpr int k_nDirectory = 2;
constexpr int k_nNodeSize = 22; // from version 2 on, with the modification time

template <typename T> T number(const unsigned char *pBytes)
{
    return qFromBigEndian<T>(pBytes);
}

QString nameAt(const unsigned char *pName)
{
    const int nLength = number<quint16>(pName);
    QString sName;
    for (int i = 0; i < nLength; ++i) {
        // Length and hash come first.
        sName += QChar(number<quint16>(pName + 6 + 2 * i));
    }
    return sName;
}

void collect(const xelttest::ResourceCall &call, uint32_t nNode, const QString &sPath,
             std::vector<xelttest::ResourceFile> &vecFiles)
{
    const unsigned char *pNode = call.pTree + k_nNodeSize * nNode;
    const int nFlags = number<quint16>(pNode + 4);
    if ((nFlags & k_nDirectory) != 0) {
        const uint32_t nChildren = number<quint32>(pNode + 6);
        const uint32_t nFirst = number<quint32>(pNode + 10);
        for (uint32_t i = 0; i < nChildren; ++i) {
            const unsigned char *pChild = call.pTree + k_nNodeSize * (nFirst + i);
            collect(call, nFirst + i, sPath + '/' + nameAt(call.pNames + number<quint32>(pChild)), vecFiles);
        }
        return;
    }
    const unsigned char *pContents = call.pPayload + number<quint32>(pNode + 10);
    vecFiles.push_back(
        {sPath, nFlags, number<quint16>(pNode + 6), number<quint16>(pNode + 8), number<quint64>(pNode + 14),
         std::string(reinterpret_cast<const char *>(pContents) + 4, number<quint32>(pContents))});
}

} // namespace

// The executable's definitions come before those in Qt's library, for the library under test too.
Q_CORE_EXPORT bool qRegisterResourceData(int, const unsigned char *, const unsigned char *,
                                         const unsigned char *);
Q_CORE_EXPORT bool qUnregisterResourceData(int, const unsigned char *, const unsigned char *,
                                           const unsigned char *);

bool qRegisterResourceData(int nVersion, const unsigned char *pTree, const unsigned char *pNames,
                           const unsigned char *pPayload)
{
    return record(true, "_Z21qRegisterResourceDataiPKhS0_S0_", nVersion, pTree, pNames, pPayload);
}

bool qUnregisterResourceData(int nVersion, const unsigned char *pTree, const unsigned char *pNames,
                             const unsigned char *pPayload)
{
    return record(false, "_Z23qUnregisterResourceDataiPKhS0_S0_", nVersion, pTree, pNames, pPayload);
}

namespace xelttest {

bool ResourceCall::sameTables(const ResourceCall &other) const
{
    return nVersion == other.nVersion && pTree == other.pTree && pNames == other.pNames &&
           pPayload == other.pPayload;
}

std::vector<ResourceCall> resourceCalls(const std::string &sModule)
{
    std::vector<ResourceCall> vecMatches;
    for (const ResourceCall &call : calls()) {
        if (call.sModule.find(sModule) != std::string::npos) {
            vecMatches.push_back(call);
        }
    }
    return vecMatches;
}

void clearResourceCalls()
{
    calls().clear();
}

std::vector<ResourceFile> filesOf(const ResourceCall &call)
{
    std::vector<ResourceFile> vecFiles;
    collect(call, 0, QStringLiteral(":"), vecFiles);
    return vecFiles;
}

} // namespace xelttest
