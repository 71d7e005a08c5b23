#include "PatternSource.h"

#include <algorithm>
#include <cstddef>

namespace {

// White, yellow, cyan, green, magenta, red and blue of three quarters, and black.
constexpr YuvColor kBarColors[PatternSource::kBars] = {
    {180, 128, 128}, {162, 44, 142}, {131, 156, 44}, {112, 72, 58},
    {84, 184, 198},  {65, 100, 212}, {35, 212, 114}, {16, 128, 128},
};

constexpr int kDigits = 6;
constexpr int kDigitColumns = 3;
constexpr int kDigitRows = 5;

// Rows from the top, three bits each, the left one highest.
constexpr int kDigitShapes[10][kDigitRows] = {
    {7, 5, 5, 5, 7}, {2, 6, 2, 2, 7}, {7, 1, 7, 4, 7}, {7, 1, 7, 1, 7}, {5, 5, 7, 1, 1},
    {7, 4, 7, 1, 7}, {7, 4, 7, 5, 7}, {7, 1, 1, 2, 2}, {7, 5, 7, 5, 7}, {7, 5, 7, 1, 7},
};

int even(int nValue)
{
    return nValue & ~1;
}

// 0 to nRange and back, an even step at a time.
int swing(qint64 nNumber, int nStep, int nRange)
{
    if (nRange < 2) {
        return 0;
    }
    const qint64 nWay = nNumber * nStep % (2 * qint64{nRange});
    return static_cast<int>(nWay <= nRange ? nWay : 2 * qint64{nRange} - nWay);
}

uint8_t *sampleAt(const FrameBuffer::Component &component, int x, int y)
{
    return component.pData + static_cast<std::ptrdiff_t>(y) * component.nPitch +
           static_cast<std::ptrdiff_t>(x) * component.nStep;
}

// The area counts samples of this component.
void fillComponent(const FrameBuffer::Component &component, const QRect &area, int nValue)
{
    const QRect inside = area.intersected(QRect(0, 0, component.nWidth, component.nHeight));
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        uint8_t *pSample = sampleAt(component, inside.left(), y);
        for (int i = 0; i < inside.width(); ++i) {
            *pSample = static_cast<uint8_t>(nValue);
            pSample += component.nStep;
        }
    }
}

} // namespace

const YuvColor &PatternSource::barColor(int nBar)
{
    return kBarColors[nBar];
}

PatternSource::PatternSource(const PatternSettings &settings, FrameLayout layout)
    : m_rate(settings.rate), m_frame(layout)
{
    m_frame.fit(settings.size.width(), settings.size.height());
    m_nWidth = m_frame.desc().iWidth;
    m_nHeight = m_frame.desc().iHeight;
    m_nBarsHeight = std::max(2, even(m_nHeight / 2));
    m_nRampHeight = even(m_nHeight / 8);
}

bool PatternSource::open()
{
    m_nNumber = -1;
    return true;
}

VideoSource::Step PatternSource::next()
{
    ++m_nNumber;
    return Step::Frame;
}

const VideoFrameDesc *PatternSource::frame()
{
    drawBars();
    fill(box(m_nNumber), kBoxColor);
    drawRamp();
    drawNumber();
    return &m_frame.desc();
}

QRect PatternSource::box(qint64 nNumber) const
{
    const int nSide = std::clamp(even(m_nHeight / 8), 2, std::min(m_nWidth, m_nBarsHeight));
    const int nStep = std::max(2, even(m_nWidth / 160));
    return {swing(nNumber, nStep, m_nWidth - nSide), swing(nNumber, 2, m_nBarsHeight - nSide), nSide, nSide};
}

// The area's numbers are even, so that the three components agree.
void PatternSource::fill(const QRect &area, const YuvColor &color)
{
    const QRect chroma(area.x() / 2, area.y() / 2, area.width() / 2, area.height() / 2);
    fillComponent(m_frame.component(0), area, color.nY);
    fillComponent(m_frame.component(1), chroma, color.nU);
    fillComponent(m_frame.component(2), chroma, color.nV);
}

void PatternSource::drawBars()
{
    for (int i = 0; i < kBars; ++i) {
        const int nLeft = even(m_nWidth * i / kBars);
        const int nRight = even(m_nWidth * (i + 1) / kBars);
        fill(QRect(nLeft, 0, nRight - nLeft, m_nBarsHeight), kBarColors[i]);
    }
}

void PatternSource::drawRamp()
{
    fill(QRect(0, m_nBarsHeight, m_nWidth, m_nRampHeight), kGroundColor); // for its chroma
    const FrameBuffer::Component luma = m_frame.component(0);
    for (int y = m_nBarsHeight; y < m_nBarsHeight + m_nRampHeight; ++y) {
        uint8_t *pRow = sampleAt(luma, 0, y);
        for (int x = 0; x < m_nWidth; ++x) {
            pRow[x] = static_cast<uint8_t>(16 + 219 * x / (m_nWidth - 1));
        }
    }
}

// As large as the space below the ramp allows, in its middle.
void PatternSource::drawNumber()
{
    const int nTop = m_nBarsHeight + m_nRampHeight;
    fill(QRect(0, nTop, m_nWidth, m_nHeight - nTop), kGroundColor);
    const int nColumns = kDigits * (kDigitColumns + 1) + 1;
    const int nCell = even(std::min(m_nWidth / nColumns, (m_nHeight - nTop) / (kDigitRows + 2)));
    QPoint origin(even((m_nWidth - nCell * nColumns) / 2) + nCell,
                  nTop + even((m_nHeight - nTop - nCell * kDigitRows) / 2));
    qint64 nPlace = 100000;
    for (int i = 0; i < kDigits; ++i) {
        drawDigit(static_cast<int>(m_nNumber / nPlace % 10), origin, nCell);
        nPlace /= 10;
        origin.rx() += nCell * (kDigitColumns + 1);
    }
}

void PatternSource::drawDigit(int nDigit, const QPoint &origin, int nCell)
{
    for (int nRow = 0; nRow < kDigitRows; ++nRow) {
        for (int nColumn = 0; nColumn < kDigitColumns; ++nColumn) {
            if ((kDigitShapes[nDigit][nRow] & (4 >> nColumn)) != 0) {
                fill(QRect(origin.x() + nColumn * nCell, origin.y() + nRow * nCell, nCell, nCell),
                     kDigitColor);
            }
        }
    }
}
