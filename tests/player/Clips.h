#pragma once

#include <QByteArray>
#include <QString>

// The files that the tests play, made once for the process with the ffmpeg program.
namespace Clips {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kFrames = 30; // of each whole clip, at 25 a second

struct Yuv
{
    int nY;
    int nU;
    int nV;
};

// The four quarters of quarters(): top left, top right, bottom left, bottom right.
constexpr Yuv kQuarters[4] = {{180, 128, 128}, {90, 100, 190}, {140, 80, 90}, {80, 190, 110}};
constexpr Yuv kGrey{110, 128, 128};

// Empty on success.
QString make();

// A folder that goes away with the process.
QString folder();

QString quarters();       // each quarter of one colour, without loss
QString grey();           // kGrey all over, without loss
QString brokenOff();      // the first part of an MP4 file with its index
QString noVideo();        // text that calls itself video
QString otherContainer(); // quarters() in Matroska, where the index does not list every packet

} // namespace Clips
