// Whether a file is opened, read or, where that can be seen, asked about.
#pragma once

#include <QString>

#include <memory>

namespace xelttest {

// By this process at least. One at a time; GUI thread.
class FileWatch
{
public:
    explicit FileWatch(const QString &strPath);
    ~FileWatch();
    FileWatch(const FileWatch &) = delete;
    FileWatch &operator=(const FileWatch &) = delete;

    bool isReady() const;
    // Since the watch began, or since this was asked last.
    bool wasTouched() const;

private:
    struct Watch;
    const std::unique_ptr<Watch> m_pWatch;
};

} // namespace xelttest
