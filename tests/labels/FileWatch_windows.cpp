// Looks at what Qt opens: labels have no other way to a file.
#include "FileWatch.h"

#include "ImportTable.h"

#include <QFileInfo>

#include <windows.h>

#include <utility>

namespace xelttest {

namespace {

decltype(&CreateFileW) g_pfnCreateFile = nullptr;
QString g_strName; // of the watched file, without its folder: paths are written in more than one way
int g_nOpened = 0;

HANDLE WINAPI createFile(const wchar_t *pszPath, DWORD nAccess, DWORD nShare, SECURITY_ATTRIBUTES *pSecurity,
                         DWORD nDisposition, DWORD nFlags, HANDLE hTemplate)
{
    if (!g_strName.isEmpty() && QString::fromWCharArray(pszPath).endsWith(g_strName, Qt::CaseInsensitive)) {
        ++g_nOpened;
    }
    return g_pfnCreateFile(pszPath, nAccess, nShare, pSecurity, nDisposition, nFlags, hTemplate);
}

} // namespace

struct FileWatch::Watch
{
};

FileWatch::FileWatch(const QString &strPath)
{
    if (g_pfnCreateFile == nullptr) {
        g_pfnCreateFile = &CreateFileW;
        if (replaceImport("Qt5Core.dll", "CreateFileW", reinterpret_cast<void *>(&createFile)) == nullptr) {
            g_pfnCreateFile = nullptr;
        }
    }
    g_strName = QFileInfo(strPath).fileName();
    g_nOpened = 0;
}

FileWatch::~FileWatch()
{
    g_strName.clear();
}

bool FileWatch::isReady() const
{
    return g_pfnCreateFile != nullptr;
}

bool FileWatch::wasTouched() const
{
    return std::exchange(g_nOpened, 0) > 0;
}

} // namespace xelttest
