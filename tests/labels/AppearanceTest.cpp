// What a text record makes of its label.
#include "LabelTest.h"

#include <gmock/gmock.h>

#include <QLoggingCategory>

namespace {

using namespace xelttest;
using testing::SizeIs;

constexpr char k_szFontSizeMessage[] = "CLS_ShaderBase::AddLabel Error:iFontSize <= 0";

// The debug messages that mention labels, while it lives.
class DebugOutput
{
public:
    DebugOutput()
    {
        s_vecMessages.clear();
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
        m_pfnBefore = qInstallMessageHandler(&DebugOutput::take);
    }
    ~DebugOutput()
    {
        qInstallMessageHandler(m_pfnBefore);
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, false);
    }
    DebugOutput(const DebugOutput &) = delete;
    DebugOutput &operator=(const DebugOutput &) = delete;

    static const std::vector<QString> &messages() { return s_vecMessages; }

private:
    static void take(QtMsgType type, const QMessageLogContext &, const QString &strMessage)
    {
        if (type == QtDebugMsg && strMessage.contains(QStringLiteral("AddLabel"))) {
            s_vecMessages.push_back(strMessage);
        }
    }

    static inline std::vector<QString> s_vecMessages;
    QtMessageHandler m_pfnBefore = nullptr;
};

class LabelAppearance : public LabelTest
{
protected:
    QLabel *shown(const TextLook &look)
    {
        rebuild({textRecord("label", look)});
        QLabel *pLabel = labelWithText(pane(), "label");
        return pLabel;
    }
};
XELT_FOR_BOTH_RENDERERS(LabelAppearance);

TEST_P(LabelAppearance, GreenTextInItsBox)
{
    const QLabel *pLabel = shown({});
    ASSERT_NE(pLabel, nullptr);
    EXPECT_EQ(pLabel->geometry(), QRect(10, 9, 200, 62));
    EXPECT_EQ(pLabel->styleSheet(), "color: rgb(0, 255, 0);background-color: rgb(0, 0, 0);");
    EXPECT_EQ(pLabel->palette().color(pLabel->foregroundRole()), QColor(0, 255, 0));
    EXPECT_EQ(pLabel->font().pointSize(), 12);
    EXPECT_EQ(pLabel->font().family(), QFont().family());
    EXPECT_EQ(pLabel->alignment(), Qt::AlignVCenter);
    EXPECT_EQ(pLabel->textFormat(), Qt::AutoText);
}

TEST_P(LabelAppearance, IsAPlainChildOfThePane)
{
    const QLabel *pLabel = shown({});
    ASSERT_NE(pLabel, nullptr);
    EXPECT_EQ(pLabel->parentWidget(), pane());
    EXPECT_EQ(pLabel->windowType(), Qt::Widget);
    EXPECT_TRUE(pLabel->isVisible());
    EXPECT_TRUE(pLabel->testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_TRUE(pLabel->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_EQ(pane()->childAt(pLabel->geometry().center()), nullptr);
    EXPECT_FALSE(pLabel->hasScaledContents());
    EXPECT_FALSE(pLabel->wordWrap());
}

TEST_P(LabelAppearance, NewLabelsGoBelowTheirSiblings)
{
    auto *pHostChild = new QWidget(pane());
    rebuild({textRecord("a"), textRecord("b")});
    const QObjectList &children = pane()->children();
    const int nHost = children.indexOf(pHostChild);
    const int nFirst = children.indexOf(labelWithText(pane(), "b"));
    const int nSecond = children.indexOf(labelWithText(pane(), "a"));
    EXPECT_LT(nFirst, nHost);
    EXPECT_LT(nSecond, nFirst);

    labelWithText(pane(), "b")->raise();
    rebuild({textRecord("a"), textRecord("c")});
    EXPECT_GT(children.indexOf(labelWithText(pane(), "c")), children.indexOf(pHostChild))
        << "a label that is there keeps its place";
}

TEST_P(LabelAppearance, ColourBytesAreRedGreenBlue)
{
    TextLook look;
    look.nColor = 0xFF332211U;
    EXPECT_EQ(shown(look)->styleSheet(), "color: rgb(17, 34, 51);background-color: rgb(0, 0, 0);");
    look.nColor = 0x00FFFFFFU;
    EXPECT_EQ(shown(look)->styleSheet(), "color: rgb(255, 255, 255);background-color: rgb(0, 0, 0);");
    EXPECT_EQ(shown(look)->palette().color(QPalette::WindowText), QColor(255, 255, 255));
    look.nColor = 0;
    EXPECT_EQ(shown(look)->styleSheet(), "color: rgb(0, 0, 0);background-color: rgb(0, 0, 0);");
}

TEST_P(LabelAppearance, FontSizeFollowsTheRecord)
{
    const DebugOutput output;
    TextLook look;
    for (const int nSize : {1, 9, 200, 12}) {
        look.nSize = nSize;
        EXPECT_EQ(shown(look)->font().pointSize(), nSize);
    }
    EXPECT_THAT(output.messages(), testing::IsEmpty());
}

TEST_P(LabelAppearance, MissingFontSizeBecomesFiftyWithAMessage)
{
    TextLook look;
    for (const int nSize : {0, -1, INT32_MIN}) {
        const DebugOutput output;
        look.nSize = nSize;
        EXPECT_EQ(shown(look)->font().pointSize(), 50) << nSize;
        ASSERT_FALSE(output.messages().empty()) << nSize;
        EXPECT_THAT(output.messages(), testing::Each(QString::fromLatin1(k_szFontSizeMessage)));
    }
}

TEST_P(LabelAppearance, FontSizeMessageComesOnceForEachRecordThatIsShown)
{
    if (GetParam() == XELT_RENDERER_YUV_SUBIMAGE) {
        // This one rebuilds in each of its paints, whose number is the window system's.
        ASSERT_TRUE(comesToRest());
    }
    TextLook look;
    look.nSize = 0;
    XeltDrawInfo noBox = textRecord("no box", look);
    noBox.nPointNum = 1;
    m_host.vecRecords = {textRecord("a", look), textRecord("b", look), noBox, textRecord("", look)};
    ASSERT_EQ(show(handle(), m_frame), 0);
    const DebugOutput output;
    if (GetParam() == XELT_RENDERER_YUV_SUBIMAGE) {
        grab(handle()); // paints once
    } else {
        ASSERT_EQ(show(handle(), m_frame), 0); // rebuilds once
    }
    EXPECT_THAT(output.messages(), SizeIs(2));
}

TEST_P(LabelAppearance, NegativeTopMovesTheWholeBoxDown)
{
    TextLook look;
    look.nTop = -5;
    look.nBottom = 30;
    EXPECT_EQ(shown(look)->geometry(), QRect(10, -11, 200, 57));
    look.nTop = -1;
    look.nBottom = -1;
    EXPECT_EQ(shown(look)->geometry(), QRect(10, -11, 200, 22));
    look.nTop = 0;
    look.nBottom = 35;
    EXPECT_EQ(shown(look)->geometry(), QRect(10, -11, 200, 57));
}

TEST_P(LabelAppearance, NegativeLeftStays)
{
    TextLook look;
    look.nLeft = -30;
    EXPECT_EQ(shown(look)->geometry(), QRect(-30, 9, 240, 62));
}

TEST_P(LabelAppearance, InvertedBoxesAreEmpty)
{
    TextLook look;
    look.nRight = 5;
    EXPECT_EQ(shown(look)->geometry(), QRect(10, 9, 0, 62));
    look.nBottom = -40;
    EXPECT_EQ(shown(look)->geometry(), QRect(10, 9, 0, 0));
}

TEST_P(LabelAppearance, ALabelTakesUpEachChange)
{
    QLabel *pLabel = shown({});
    TextLook look;
    look.nRight = 300;
    EXPECT_EQ(shown(look)->width(), 290);
    look.nColor = overlayColour(255, 0, 0);
    EXPECT_EQ(shown(look)->palette().color(QPalette::WindowText), QColor(255, 0, 0));
    look.nSize = 30;
    EXPECT_EQ(shown(look)->font().pointSize(), 30);
    rebuild({textRecord("other", look)});
    EXPECT_EQ(pLabel->text(), "other");
    rebuild({});
    EXPECT_EQ(shown({}), pLabel);
    EXPECT_EQ(pLabel->geometry(), QRect(10, 9, 200, 62));
    EXPECT_EQ(pLabel->font().pointSize(), 12);
    EXPECT_EQ(pLabel->palette().color(QPalette::WindowText), QColor(0, 255, 0));
}

} // namespace
