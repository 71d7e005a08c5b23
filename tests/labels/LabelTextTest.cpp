// Which texts a label may read as markup.
#include "widget/LabelText.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QTextDocument>

#include <iterator>
#include <random>

namespace {

using labels::CouldTakeForever;
using labels::FormatFor;
using labels::NamesSomethingToLoad;

// Counts what its text makes it load.
class Document : public QTextDocument
{
public:
    int loads(const QString &strText)
    {
        m_nLoads = 0;
        setHtml(strText);
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        drawContents(&painter);
        return m_nLoads;
    }

protected:
    QVariant loadResource(int, const QUrl &) override
    {
        ++m_nLoads;
        return QVariant();
    }

private:
    int m_nLoads = 0;
};

constexpr const char *k_apszForms[] = {
    "<img src=f>",
    "<body background=f>x",
    "<p style='background:url(f)'>x",
    "<link href=f type=text/css>x",
    "<style>@import 'f';</style>x",
    "<style>p{background:url(f)}</style><p>x",
    "<i style=\"color:red\">x</i>",
    "<table border=1><tr><td>x</table>",
};

constexpr const char *k_apszPieces[] = {
    "<",    ">",    "</",   "=",      "\"",       "'",       " ",          "\n",     "/",        "style",
    "<!--", "-->",  "<!>",  "</q>",   "<br>",     "<b>",     "<p style='", "\u3000", "&",        "&#",
    "#x69", "&#0;", "\\",   "\\69",   "&#92;75 ", "{",       "}",          "/*",     "*/",       ";",
    "url(", "@im",  "&lt;", "\u212A", "\u017F",   "<style>", "<html>",     "<head>", "</style>",
};

QString reference(std::mt19937 &random, ushort nCharacter)
{
    const bool blHex = random() % 2 == 0;
    return QLatin1String(blHex ? "&#x" : "&#") + QString::number(nCharacter, blHex ? 16 : 10) +
           QLatin1Char(';');
}

// Two forms, with some characters spelled in other ways and some put between.
QString randomText(std::mt19937 &random)
{
    QString strText = QString::fromUtf8(k_apszForms[random() % std::size(k_apszForms)]);
    strText += QString::fromUtf8(k_apszForms[random() % std::size(k_apszForms)]);
    for (size_t i = random() % 7; i > 0; --i) {
        const int nAt = static_cast<int>(random() % static_cast<unsigned>(strText.size()));
        switch (random() % 3) {
        case 0:
            strText.insert(nAt, QString::fromUtf8(k_apszPieces[random() % std::size(k_apszPieces)]));
            break;
        case 1:
            strText.replace(nAt, 1, reference(random, strText.at(nAt).unicode()));
            break;
        default:
            strText.replace(nAt, 1, strText.at(nAt).toUpper());
        }
    }
    return QLatin1String("<b>") + strText;
}

TEST(LabelText, WhateverLoadsIsNamed)
{
    std::mt19937 random(4711); // NOLINT(bugprone-random-generator-seed): the same texts each time
    Document document;
    int nLoading = 0;
    int nHarmless = 0;
    for (int i = 0; i < 6000; ++i) {
        const QString strText = randomText(random);
        const bool blLoads = document.loads(strText) > 0;
        const bool blNames = NamesSomethingToLoad(strText);
        EXPECT_TRUE(blNames || !blLoads) << strText.toStdString();
        nLoading += blLoads ? 1 : 0;
        nHarmless += blNames ? 0 : 1;
    }
    EXPECT_GT(nLoading, 300);
    EXPECT_GT(nHarmless, 300);
}

TEST(LabelText, NamesInEverySpelling)
{
    for (const char *pszText : {"img",
                                "IMG",
                                "SRC",
                                "hRef",
                                "background",
                                "BACKGROUND",
                                "bac\u212Aground",
                                "url",
                                "@import",
                                "\u017Frc",
                                "&#105;mg",
                                "&#105mg&#105;mg",
                                "&#x69;MG",
                                "&#X69;mg",
                                "&#x0x69;mg",
                                "&#+105;mg",
                                "&#000105;mg",
                                "&#73;mg",
                                "&#x17f;rc",
                                "&#x212a;bac&#x212A;ground",
                                "im&#103",
                                "&&#105;mg",
                                "&#&#105;mg",
                                "&#38;#105;mg",
                                "&#38;#38;#105;mg",
                                "&#64;i&#109;port",
                                "<p style='\\75rl(f)'>",
                                "<p style='&#92;75rl(f)'>",
                                "<p \u017FTYLE='\\75rl(f)'>",
                                "<style>",
                                "<  style",
                                "<\"style\"",
                                "<'&#115;tyle'",
                                "&lt;b>x<STYLE"}) {
        EXPECT_TRUE(NamesSomethingToLoad(QString::fromUtf8(pszText))) << pszText;
    }
}

TEST(LabelText, NamesNothing)
{
    for (const char *pszText : {"", "<b>x</b>", "im g", "&#1 05;mg", "&#105", "&#;mg", "&#x;",
                                "&#99999999999;mg", "&imag;", "i&shy;mg", "\u0130mg", "link", "import",
                                "C:\\x", "<span style='color:#f00'>", "< b>style-free", "&amp;#105;mg"}) {
        EXPECT_FALSE(NamesSomethingToLoad(QString::fromUtf8(pszText))) << pszText;
    }
}

TEST(LabelText, ReferencesNestedWithoutEndAreNotFollowed)
{
    QString strText = QStringLiteral("<b>x &#38;");
    for (int i = 0; i < 5; ++i) {
        strText += QStringLiteral("#38;");
    }
    EXPECT_TRUE(NamesSomethingToLoad(strText));
}

TEST(LabelText, SizesThatTakeForever)
{
    for (const char *pszText : {"<td colspan=2>", "<td RowSpan=2>", "<td width=99999>",
                                "<td width=\"99999\">", "<td width = '99999'>", "<td width=1e9>",
                                "<td style='padding:inf'>", "<p style='margin:1px nanpx'>",
                                "<td width=1.E+9>", "<td width=&#57;9999>", "<p style='margin:1px 99999px'>",
                                "<p style='margin:1e9px'>", "<p style='color:#123456;margin:123456px'>",
                                "<p style='margin:/*>*/1px'>", "<p style='font:\">\" 99999px'>"}) {
        EXPECT_TRUE(CouldTakeForever(QString::fromUtf8(pszText))) << pszText;
    }
    for (const char *pszText :
         {"<td width=9999>", "<b>99999</b>", "<b>ID: 123456</b>", "<font color=red>123456</font>",
          "<font color=#123456>x", "<font color='#1e3456'>x", "<p style='color:#123456'>x", "a 1e9 b"}) {
        EXPECT_FALSE(CouldTakeForever(QString::fromUtf8(pszText))) << pszText;
    }
}

TEST(LabelText, PlainTextIsNeverAffected)
{
    for (const char *pszText : {"img src=x", "a < b", "url(x)", "<3 &#105;mg", "x=99999", "colspan"}) {
        EXPECT_EQ(FormatFor(QString::fromUtf8(pszText)), Qt::AutoText) << pszText;
    }
    EXPECT_EQ(FormatFor(QStringLiteral("<b>x</b>")), Qt::AutoText);
    EXPECT_EQ(FormatFor(QStringLiteral("<b>img</b>")), Qt::PlainText);
    EXPECT_EQ(FormatFor(QStringLiteral("<b width=99999>x</b>")), Qt::PlainText);
}

} // namespace
