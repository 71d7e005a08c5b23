#pragma once

#include <QString>

struct Clip
{
    QString strFile;
    QString strProblem; // empty: strFile is there
};

// A short H.264 clip of a moving test pattern, made with the ffmpeg program and kept in the user's cache
// folder for the next time. Needs a QCoreApplication; blocks while ffmpeg runs.
Clip testClip();
