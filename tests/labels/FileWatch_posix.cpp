#include "FileWatch.h"

#include <QFile>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>

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
}

FileWatch::~FileWatch()
{
    close(m_pWatch->nNotify);
}

bool FileWatch::isReady() const
{
    return m_pWatch->blReady;
}

bool FileWatch::wasTouched() const
{
    std::array<char, 4096> aEvents;
    return read(m_pWatch->nNotify, aEvents.data(), aEvents.size()) > 0;
}

} // namespace xelttest
