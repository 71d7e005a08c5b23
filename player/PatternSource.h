#pragma once

#include "FrameBuffer.h"
#include "VideoSource.h"

#include <QRect>
#include <QSize>

struct PatternSettings
{
    QSize size{1280, 720};
    double rate = 25.0; // pictures a second
};

struct YuvColor
{
    int nY;
    int nU;
    int nV;
};

// A moving test pattern without end. A picture follows from its number, the size and the layout alone:
//   upper half      the eight colour bars, left to right, and a white box that moves over them
//   next eighth     a ramp of grey from black to white
//   the rest        the picture's number, six digits, counted from 0
// All in the limited range.
class PatternSource : public VideoSource
{
public:
    static constexpr int kBars = 8;
    static const YuvColor &barColor(int nBar);
    static constexpr YuvColor kBoxColor{235, 128, 128};
    static constexpr YuvColor kGroundColor{50, 128, 128};
    static constexpr YuvColor kDigitColor{210, 128, 128};

    PatternSource(const PatternSettings &settings, FrameLayout layout);

    bool open() override;
    Step next() override;
    const VideoFrameDesc *frame() override;
    double frameSeconds() const override { return static_cast<double>(m_nNumber) / m_rate; }
    double frameDuration() const override { return 1.0 / m_rate; }
    const QString &problem() const override { return m_strProblem; }

    // Where the box stands in that picture. All its numbers are even.
    QRect box(qint64 nNumber) const;

private:
    void fill(const QRect &area, const YuvColor &color);
    void drawBars();
    void drawRamp();
    void drawNumber();
    void drawDigit(int nDigit, const QPoint &origin, int nCell);

    const double m_rate;
    const QString m_strProblem; // there is none, ever
    FrameBuffer m_frame;
    int m_nWidth;
    int m_nHeight;
    int m_nBarsHeight;
    int m_nRampHeight;
    qint64 m_nNumber = -1;
};
