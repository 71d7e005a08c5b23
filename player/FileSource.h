#pragma once

#include "FrameLayout.h"
#include "VideoSource.h"

#include <memory>

// Pictures of video files. A build without FFmpeg's libraries has none.
namespace FileSource {

bool isAvailable();

// nCodecThreads: 0 lets the codec choose. Null where it is not available.
std::unique_ptr<VideoSource> make(const QString &strFile, FrameLayout layout, int nCodecThreads);

} // namespace FileSource
