// Coordinates and font sizes that no screen has.
#include "LabelTest.h"
#include "System.h"

#include <QElapsedTimer>

#include <climits>

namespace {

using namespace xelttest;

constexpr qint64 k_nPatienceMs = 5000;

// Bytes that the process has come to use.
qint64 grown(size_t nBefore)
{
    return static_cast<qint64>(residentBytes()) - static_cast<qint64>(nBefore);
}

class HostileNumbers : public LabelTest
{
protected:
    QString shown(const QByteArray &abText)
    {
        rebuild({textRecord(abText)});
        m_pWindow->grab();
        return textsOn(pane()).at(0);
    }
};
XELT_FOR_BOTH_RENDERERS(HostileNumbers);

TEST_P(HostileNumbers, CoordinatesOfAnySize)
{
    shown("warm-up");
    const size_t nBefore = residentBytes();
    QElapsedTimer elapsed;
    elapsed.start();
    for (const XeltPoint &a : {XeltPoint{INT_MIN, INT_MIN}, XeltPoint{INT_MAX, INT_MAX}, XeltPoint{0, 0},
                               XeltPoint{-20000000, 0}, XeltPoint{INT_MIN, INT_MAX}}) {
        for (const XeltPoint &b :
             {XeltPoint{INT_MAX, INT_MAX}, XeltPoint{INT_MIN, INT_MIN}, XeltPoint{INT_MAX, 50}}) {
            TextLook look;
            look.nLeft = a.x;
            look.nTop = a.y;
            look.nRight = b.x;
            look.nBottom = b.y;
            rebuild({textRecord("far", look)});
            m_pWindow->grab();
            const QLabel *pLabel = labelWithText(pane(), QStringLiteral("far"));
            ASSERT_NE(pLabel, nullptr);
            EXPECT_GE(pLabel->width(), 0);
            EXPECT_GE(pLabel->height(), 0);
        }
    }
    EXPECT_LT(elapsed.elapsed(), k_nPatienceMs * 2);
    EXPECT_LT(grown(nBefore), 64 << 20);
    EXPECT_EQ(shown("warm-up"), "warm-up");
    EXPECT_EQ(labelsOn(pane())[0]->geometry(), QRect(10, 9, 200, 62));
}

TEST_P(HostileNumbers, FontsOfAnySize)
{
    shown("warm-up");
    const size_t nBefore = residentBytes();
    QElapsedTimer elapsed;
    elapsed.start();
    TextLook look;
    for (const int nSize : {1, 999, 10000, 100000, 10000000, INT_MAX / 2, INT_MAX}) {
        look.nSize = nSize;
        rebuild({textRecord("Huge \xE6\x97\xB6", look)});
        m_pWindow->grab();
        EXPECT_LT(elapsed.restart(), k_nPatienceMs) << nSize;
        EXPECT_LT(grown(nBefore), 64 << 20) << nSize;
    }
    EXPECT_EQ(shown("warm-up"), "warm-up");
}

// Some of these sizes keep Qt busy without end when it follows them.
TEST_P(HostileNumbers, MarkupOfAnySize)
{
    shown("warm-up");
    const size_t nBefore = residentBytes();
    QElapsedTimer elapsed;
    elapsed.start();
    for (const QByteArray &abText :
         {QByteArray("<td style=\"padding:99999999px\">x"), QByteArray("<td style=\"padding:1e30px\">x"),
          QByteArray("<td style=\"padding:inf\">x<td>y"),
          QByteArray("<body>x<br>y<center style=\"margin-top:9999999px\">z"),
          QByteArray("<table><td colspan=9999><tr><td rowspan=9999><tr><td colspan=9999>x"),
          QByteArray("<p style='margin:/*>*/99999999px'>x"), QByteArray("<font size=+999999999>x"),
          QByteArray("<span style='font-size:9999px'>x"), QByteArray("<span style='font-size:9999pt'>x"),
          QByteArray("<hr width=999999999>"), QByteArray("<hr width=9999>"),
          QByteArray("<p style='margin:9999px;text-indent:-9999px'>x"),
          QByteArray("<ol start=-2147483648><li>x"),
          QByteArray("<table border=9999 cellspacing=9999 width=9999><td>x"), QByteArray("<b>").repeated(45),
          QByteArray("<ul>").repeated(34), QByteArray("<ol><li>").repeated(17),
          QByteArray("<table><td>").repeated(12), QByteArray("<td>").repeated(34)}) {
        EXPECT_EQ(shown(abText), QString::fromUtf8(abText));
        EXPECT_LT(elapsed.restart(), k_nPatienceMs) << abText.constData();
        EXPECT_LT(grown(nBefore), 64 << 20) << abText.constData();
    }
}

} // namespace
