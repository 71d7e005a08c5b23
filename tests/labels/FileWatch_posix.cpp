#include "FileWatch.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

// Shared with every thread that asks about any file, also before main.
std::mutex g_mutex;
std::array<char, 256>
    g_acName; // of the watched file, without its folder: paths are written in more than one way
int g_nAsked = 0;

void watchName(const QByteArray &abName)
{
    const std::lock_guard<std::mutex> guard(g_mutex);
    qstrncpy(g_acName.data(), abName.constData(), static_cast<uint>(g_acName.size()));
    g_nAsked = 0;
}

void noteAsked(const char *pszPath)
{
    const std::lock_guard<std::mutex> guard(g_mutex);
    g_nAsked += g_acName[0] != '\0' && std::strstr(pszPath, g_acName.data()) != nullptr ? 1 : 0;
}

int takeAsked()
{
    const std::lock_guard<std::mutex> guard(g_mutex);
    return std::exchange(g_nAsked, 0);
}

template <typename Pfn> Pfn systemsOwn(Pfn, const char *pszName)
{
    return reinterpret_cast<Pfn>(dlsym(RTLD_NEXT, pszName));
}

} // namespace

// The executable's definitions come before the system's, for Qt too. The kernel does not tell of these calls.
extern "C" int stat(const char *pszPath, struct stat *pStat) noexcept
{
    static const auto pfnReal = systemsOwn(&stat, "stat");
    noteAsked(pszPath);
    return pfnReal(pszPath, pStat);
}

extern "C" int lstat(const char *pszPath, struct stat *pStat) noexcept
{
    static const auto pfnReal = systemsOwn(&lstat, "lstat");
    noteAsked(pszPath);
    return pfnReal(pszPath, pStat);
}

extern "C" int stat64(const char *pszPath, struct stat64 *pStat) noexcept
{
    static const auto pfnReal = systemsOwn(&stat64, "stat64");
    noteAsked(pszPath);
    return pfnReal(pszPath, pStat);
}

extern "C" int lstat64(const char *pszPath, struct stat64 *pStat) noexcept
{
    static const auto pfnReal = systemsOwn(&lstat64, "lstat64");
    noteAsked(pszPath);
    return pfnReal(pszPath, pStat);
}

extern "C" int statx(int nFolder, const char *pszPath, int nFlags, unsigned int nMask,
                     struct statx *pStat) noexcept
{
    static const auto pfnReal = systemsOwn(&statx, "statx");
    noteAsked(pszPath);
    return pfnReal(nFolder, pszPath, nFlags, nMask, pStat);
}

extern "C" int access(const char *pszPath, int nMode) noexcept
{
    static const auto pfnReal = systemsOwn(&access, "access");
    noteAsked(pszPath);
    return pfnReal(pszPath, nMode);
}

namespace xelttest {

struct FileWatch::Watch
{
    int nNotify = -1;
    bool blReady = false;
};

FileWatch::FileWatch(const QString &strPath) : m_pWatch(std::make_unique<Watch>())
{
    m_pWatch->nNotify = inotify_init1(IN_NONBLOCK);
    m_pWatch->blReady = inotify_add_watch(m_pWatch->nNotify, QFile::encodeName(strPath).constData(),
                                          IN_OPEN | IN_ACCESS) >= 0;
    watchName(QFile::encodeName(QFileInfo(strPath).fileName()));
}

FileWatch::~FileWatch()
{
    watchName(QByteArray());
    close(m_pWatch->nNotify);
}

bool FileWatch::isReady() const
{
    return m_pWatch->blReady;
}

bool FileWatch::wasTouched() const
{
    std::array<char, 4096> aEvents;
    const bool blOpened = read(m_pWatch->nNotify, aEvents.data(), aEvents.size()) > 0;
    return takeAsked() > 0 || blOpened;
}

} // namespace xelttest
