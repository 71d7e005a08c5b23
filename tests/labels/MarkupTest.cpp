// Markup that names nothing to load.
#include "LabelTest.h"

#include <QImage>

namespace {

using namespace xelttest;

class Markup : public LabelTest
{
protected:
    const QLabel *shown(const QByteArray &abText)
    {
        rebuild({textRecord(abText)});
        return labelWithText(pane(), QString::fromUtf8(abText));
    }

    // What Qt makes of a label's text in a format of its own.
    QImage pictureOf(const QLabel &like, Qt::TextFormat format)
    {
        QLabel label(m_pWindow.get());
        label.setTextFormat(format);
        label.setText(like.text());
        label.setAttribute(Qt::WA_TranslucentBackground);
        label.setAlignment(like.alignment());
        label.setStyleSheet(like.styleSheet());
        label.setFont(like.font());
        label.setGeometry(like.geometry());
        return label.grab().toImage();
    }

    static QImage pictureOf(const QLabel &label) { return const_cast<QLabel &>(label).grab().toImage(); }
};
XELT_FOR_BOTH_RENDERERS(Markup);

TEST_P(Markup, ThatIsHarmlessIsFollowed)
{
    for (const char *pszText : {"<b>bold</b>",
                                "<i>x</i>",
                                "<u>x</u>",
                                "<font color=red>x</font>",
                                "<font color='#00ff00' size=5>x</font>",
                                "a<br>b",
                                "<p align=right>x</p>",
                                "<span style=\"color:#f00\">x</span>",
                                "<span style='color:#123456; font-size:14pt'>x</span>",
                                "<b>&amp; &#246; &lt;x&gt;</b>",
                                "<b>&#x4e2d;</b>",
                                "<table border=1><tr><td>1</td><td>2</td></tr></table>",
                                "<center>x</center>",
                                "<h1>x</h1>",
                                "<ul><li>a<li>b</ul>",
                                "<b>20240131 12:00:00</b>",
                                "<font color=red>plate 123456</font>",
                                "<b>unclosed",
                                "<pre>a  b</pre>",
                                "<sub>x</sub>",
                                "<hr width=50>",
                                "<b>link up, import, C:\\x</b>"}) {
        const QLabel *pLabel = shown(pszText);
        ASSERT_NE(pLabel, nullptr) << pszText;
        EXPECT_EQ(pLabel->textFormat(), Qt::AutoText) << pszText;
        const QImage actual = pictureOf(*pLabel);
        EXPECT_EQ(actual, pictureOf(*pLabel, Qt::RichText)) << pszText;
        EXPECT_NE(actual, pictureOf(*pLabel, Qt::PlainText)) << pszText;
    }
}

TEST_P(Markup, ThatIsHostileLooksLikePlainText)
{
    for (const char *pszText : {"<b>bold</b> <img src=x>", "<p style='background:url(x)'>y</p>",
                                "<i>x</i><a href=x>y</a>", "<table><td colspan=2>x</table>"}) {
        const QLabel *pLabel = shown(pszText);
        ASSERT_NE(pLabel, nullptr) << pszText;
        EXPECT_EQ(pLabel->textFormat(), Qt::PlainText) << pszText;
        EXPECT_EQ(pLabel->findChildren<QObject *>().size(), 0) << "a text document is a child of its label";
        const QImage actual = pictureOf(*pLabel);
        EXPECT_EQ(actual, pictureOf(*pLabel, Qt::PlainText)) << pszText;
        EXPECT_NE(actual, pictureOf(*pLabel, Qt::RichText)) << pszText;
    }
}

TEST_P(Markup, TakesTurnsWithPlainText)
{
    for (int i = 0; i < 2; ++i) {
        for (const char *pszText : {"<b>rich</b>", "plain < img", "<b>x</b><img src=y>"}) {
            const QLabel *pLabel = shown(pszText);
            ASSERT_NE(pLabel, nullptr) << pszText;
            const bool blRich = pLabel->text().contains(QStringLiteral("rich"));
            EXPECT_EQ(pictureOf(*pLabel), pictureOf(*pLabel, blRich ? Qt::RichText : Qt::PlainText))
                << pszText;
        }
    }
}

} // namespace
