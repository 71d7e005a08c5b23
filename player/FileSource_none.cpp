// A build without FFmpeg's libraries.
#include "FileSource.h"

namespace FileSource {

bool isAvailable()
{
    return false;
}

std::unique_ptr<VideoSource> make(const QString &, FrameLayout, int)
{
    return nullptr;
}

} // namespace FileSource
