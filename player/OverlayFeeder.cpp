#include "OverlayFeeder.h"

#include <QFont>
#include <QFontMetrics>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr double kTurn = 6.283185307179586;
constexpr int kFontPoints = 11;
constexpr int kTextMargin = 10;
constexpr int kTextBox = 10; // the label adds 11 pixels above and below

// Shapes count a component's byte from 126 for black to 252 for full.
uint32_t shapeColor(double red, double green, double blue)
{
    const auto component = [](double part) {
        return static_cast<uint32_t>(std::lround(126.0 + 126.0 * part));
    };
    return component(red) | component(green) << 8U | component(blue) << 16U;
}

XeltDrawInfo shape(int32_t nType, uint32_t nColor, int32_t nLineWidth)
{
    XeltDrawInfo record{};
    record.nType = nType;
    record.nColor = nColor;
    record.nSize = nLineWidth;
    return record;
}

// Places points given in parts of the drawn area.
class AreaPoints
{
public:
    explicit AreaPoints(const XeltDrawInfoRequest &request)
        : m_left(request.nLeft), m_top(request.nTop), m_width(request.nWidth), m_height(request.nHeight)
    {
    }

    void add(XeltDrawInfo &record, double x, double y) const
    {
        record.aPoints[record.nPointNum] = {static_cast<int32_t>(std::lround(m_left + m_width * x)),
                                            static_cast<int32_t>(std::lround(m_top + m_height * y))};
        ++record.nPointNum;
    }

private:
    double m_left;
    double m_top;
    double m_width;
    double m_height;
};

// 0 to 1 and back in each period.
double swing(double seconds, double period)
{
    const double phase = std::fmod(seconds, period) / period;
    return phase < 0.5 ? 2.0 * phase : 2.0 - 2.0 * phase;
}

XeltDrawInfo wave(const AreaPoints &area, double seconds)
{
    XeltDrawInfo record = shape(DRAWINFO_POLYLINE, shapeColor(1.0, 1.0, 0.0), 4);
    for (int i = 0; i < XELT_DRAWINFO_MAX_POINTS; ++i) {
        const double x = static_cast<double>(i) / (XELT_DRAWINFO_MAX_POINTS - 1);
        area.add(record, 0.05 + 0.9 * x, 0.75 + 0.08 * std::sin(kTurn * (2.0 * x - seconds / 2.0)));
    }
    return record;
}

// A box such as a detector draws around what it follows.
XeltDrawInfo box(const AreaPoints &area, double seconds)
{
    XeltDrawInfo record = shape(DRAWINFO_OUTLINE, shapeColor(0.0, 1.0, 0.0), 3);
    const double left = 0.08 + 0.6 * swing(seconds, 7.0);
    const double top = 0.2 + 0.3 * swing(seconds, 4.0);
    area.add(record, left, top);
    area.add(record, left + 0.22, top);
    area.add(record, left + 0.22, top + 0.25);
    area.add(record, left, top + 0.25);
    return record;
}

XeltDrawInfo hexagon(const AreaPoints &area, double seconds)
{
    XeltDrawInfo record = shape(DRAWINFO_OUTLINE_ALT, shapeColor(0.0, 1.0, 1.0), 2);
    for (int i = 0; i < 6; ++i) {
        const double angle = kTurn * (i / 6.0 + seconds / 8.0);
        area.add(record, 0.8 + 0.09 * std::cos(angle), 0.3 + 0.16 * std::sin(angle));
    }
    return record;
}

XeltDrawInfo zone(const AreaPoints &area, double seconds)
{
    XeltDrawInfo record = shape(DRAWINFO_FILLED_AREA, shapeColor(1.0, 0.0, 0.0), 1);
    record.fOpacity = 0.5F;
    const double shift = 0.1 * swing(seconds, 5.0);
    area.add(record, 0.35 + shift, 0.45);
    area.add(record, 0.60 + shift, 0.45);
    area.add(record, 0.30 + shift, 0.65);
    area.add(record, 0.65 + shift, 0.65);
    return record;
}

int textWidth(const QString &strText)
{
    QFont font;
    font.setPointSize(kFontPoints);
    return QFontMetrics(font).horizontalAdvance(strText) + 6;
}

// Cut so that no character is left half.
QByteArray fittingUtf8(QString strText)
{
    while (strText.toUtf8().size() >= XELT_DRAWINFO_TEXT_SIZE) {
        strText.chop(strText.at(strText.size() - 1).isLowSurrogate() ? 2 : 1);
    }
    return strText.toUtf8();
}

} // namespace

OverlayFeeder::OverlayFeeder(const QString &strPaneName, std::function<double()> position)
    : m_position(std::move(position)),
      m_name{fittingUtf8(strPaneName), DRAWINFO_ENCODING_UTF8, textWidth(strPaneName)},
      // "live picture" in GBK, as hosts on Chinese systems send it
      m_chinese{QByteArrayLiteral("\xCA\xB5\xCA\xB1\xBB\xAD\xC3\xE6"), DRAWINFO_ENCODING_GBK,
                textWidth(QStringLiteral("\u5b9e\u65f6\u753b\u9762"))},
      m_timeCode{{}, DRAWINFO_ENCODING_UTF8, textWidth(QStringLiteral("\u25b6 00:00:00.000"))}
{
}

XeltDrawInfoCallbackPara OverlayFeeder::callback()
{
    return {&OverlayFeeder::answer, this};
}

void OverlayFeeder::setEnabled(bool blEnabled)
{
    m_blEnabled = blEnabled;
}

void OverlayFeeder::setTextArea(const QRect &area)
{
    m_nTextLeft = area.x();
    m_nTextTop = area.y();
    m_nTextWidth = area.width();
    m_nTextHeight = area.height();
}

int32_t OverlayFeeder::answer(void * /*pReserved*/, const XeltDrawInfoRequest *pRequest, int32_t /*nLength*/,
                              void *pUser)
{
    const auto *pFeeder = static_cast<const OverlayFeeder *>(pUser);
    if (!pFeeder->m_blEnabled) {
        return 0;
    }
    const double seconds = pFeeder->m_position();
    pFeeder->addShapes(*pRequest, seconds);
    pFeeder->addTexts(*pRequest, seconds);
    return 0;
}

void OverlayFeeder::addShapes(const XeltDrawInfoRequest &request, double seconds) const
{
    const AreaPoints area(request);
    for (const auto pfnMake : {wave, box, hexagon, zone}) {
        xelt::addDrawInfo(request, pfnMake(area, seconds));
    }
}

void OverlayFeeder::addTexts(const XeltDrawInfoRequest &request, double seconds) const
{
    const auto nMilliseconds = static_cast<long long>(std::llround(seconds * 1000.0));
    char szTime[64];
    std::snprintf(szTime, sizeof(szTime), "\xE2\x96\xB6 %02lld:%02lld:%02lld.%03lld", nMilliseconds / 3600000,
                  nMilliseconds / 60000 % 60, nMilliseconds / 1000 % 60, nMilliseconds % 1000);
    const int nLeft = m_nTextLeft + kTextMargin;
    const int nTop = m_nTextTop + kTextMargin + 11;
    const int nRight = m_nTextLeft + m_nTextWidth - kTextMargin;
    const int nBottom = m_nTextTop + m_nTextHeight - kTextMargin - 11 - kTextBox;
    addText(request, m_name, m_name.encoded.constData(), nLeft, nTop, 0xFFFFFF);
    addText(request, m_chinese, m_chinese.encoded.constData(), nRight - m_chinese.nWidth, nTop, 0x40C0FF);
    addText(request, m_timeCode, szTime, nLeft, nBottom, 0x80FF80);
}

void OverlayFeeder::addText(const XeltDrawInfoRequest &request, const Text &text, const char *pText,
                            int nLeft, int nTop, uint32_t nColor) const
{
    XeltDrawInfo record{};
    record.nType = DRAWINFO_TEXT;
    record.nColor = nColor;
    record.nSize = kFontPoints;
    record.nPointNum = 2;
    record.aPoints[0] = {nLeft, nTop};
    record.aPoints[1] = {nLeft + text.nWidth, nTop + kTextBox};
    record.nTextEncoding = text.nEncoding;
    std::strncpy(record.aText, pText, sizeof(record.aText) - 1);
    xelt::addDrawInfo(request, record);
}
