#include "HostileCorpus.h"

#include "XeltRender.h"

namespace xelttest {

namespace {

constexpr char k_szTarget[] = "%1";

// What names the target, each in several spellings.
constexpr const char *k_apszPlain[] = {
    "<img src=%1>",
    "<img src=\"%1\" width=9>",
    "<img source='%1'>",
    "<b>x<img src=%1",
    "<body background=%1>x",
    "<qt background=\"%1\">x",
    "<table background='%1'><tr><td>x",
    "<table><tr><td background=%1>x",
    "<a href='%1'>x</a>",
    "<link href=%1 type=text/css>x",
    "<link type=\"text/css\" rel=stylesheet href=\"%1\"/>x",
    "<p style='background:url(%1)'>x",
    "<p style=\"background-image: url( '%1' )\">x",
    "<p style=background:url(%1)>x",
    "<ul style='list-style-image:url(%1)'><li>x",
    "<p style='border-image:url(%1)'>x",
    "<style>@import '%1';</style>x",
    "<style>@import url(%1);</style>x",
    "<style>p{background:url(%1)}</style><p>x",
    "<i>x</i><input type=image src=%1>",
};

// What only one spelling is wanted of.
constexpr const char *k_apszOdd[] = {
    "<b>x</b><\"img\" src=%1>",
    "<b>x</b><'img' 'src'='%1'>",
    "<b>x</b>< img src=%1>",
    "<b>x</b><img \"src\"=%1>",
    "<b><i><img src=%1></b></i>",
    "<b></i></p><img src=%1></table>",
    "<table><tr><table><img src=%1></td>",
    "<b>x</b><!-- x --><img src=%1>",
    "<b><!-- > --><img src=%1>",
    "<b>x<<img src=%1>>",
    "<b title='<'><img src=%1>",
    "<b>x</b><&#+105;mg src=%1>",
    "<b>x</b><&#x0x69;mg src=%1>",
    "<b>x</b><i&#0109;g s&#X72;c=%1>",
    "<b>x</b><&#105;&#109;&#103; &#115;&#114;&#99;=%1>",
    "<b>x</b><img sr&#99;=%1>",
    "<b>x<body b&#x61;ckground=%1>",
    "<b>x<body bac\xE2\x84\xAAground=%1>", // a Kelvin sign
    "<p style='bac\xE2\x84\xAAground:url(%1)'>x",
    "<p \xC5\xBFtyle='background:url(%1)'>x", // a long s
    "<b>x<lin\xE2\x84\xAA href=%1 type=text/css>",
    "<b>x</b><img\xE3\x80\x80src=%1>", // an ideographic space
    "<b>x</b><img\xC2\xA0src=%1>",
    "<p style='background:u\\72l(%1)'>x",
    "<p style='\\62 ackground:url(%1)'>x",
    "<p style='background:\\000075\\000072l(%1)'>x",
    "<p style='b&#92;61ckground:&#92;75rl(%1)'>x",
    "<p style='background:/**/url(%1)'>x",
    "<p style='background:url(/**/%1)'>x",
    "<p style='color:red;background:red url( \"%1\" ) repeat'>x",
    "<b>x</b><style>@im</q>port '%1';</style>",
    "<b>x</b><style>@im<!-- x -->port '%1';</style>",
    "<b>x</b><style>@im<!>port '%1';</style>",
    "<b>x</b><'style'>@im</q>port '%1';</style>",
    "<b>x</b>< STYLE >p{back</q>ground:u<!>rl(%1)}</style><p>x",
    "<b>x</b><style>@\\69mport '%1';</style>",
    "<b>x</b><style>&#64;&#105;mport '%1';</style>",
    "<style>@media screen{p{background:url(%1)}}</style><p>x",
    "<b>x</b><!--StartFragment--><img src=%1><!--EndFragment-->",
    "<html><head><link href=%1 type=text/css></head>x",
};

using Spelling = QByteArray (*)(const QByteArray &);

QByteArray asItIs(const QByteArray &abText)
{
    return abText;
}

QByteArray inCapitals(const QByteArray &abText)
{
    return abText.toUpper();
}

QByteArray inMixedCase(const QByteArray &abForm)
{
    QByteArray abText = abForm;
    const QByteArray abCapitals = abText.toUpper();
    for (int i = 0; i < abText.size(); i += 2) {
        abText[i] = abCapitals[i];
    }
    return abText;
}

QByteArray withWideSpaces(const QByteArray &abForm)
{
    QByteArray abText = abForm;
    return abText.replace(' ', " \n\t\r ").replace('=', "\n=\t");
}

QByteArray withDecimalReferences(const QByteArray &abForm)
{
    QByteArray abText = abForm;
    for (const char *pszWord : {"img", "src", "background", "url", "href", "import", "style"}) {
        abText.replace(pszWord, "&#" + QByteArray::number(pszWord[0]) + ';' + (pszWord + 1));
    }
    return "<b>x</b>" + abText;
}

QByteArray withHexReferences(const QByteArray &abForm)
{
    QByteArray abText = abForm;
    for (const char *pszWord : {"mg", "rc", "ground", "rl", "ref", "port", "yle"}) {
        abText.replace(pszWord, "&#x" + QByteArray::number(pszWord[0], 16) + ';' + (pszWord + 1));
    }
    return "<b>x</b>" + abText;
}

QByteArray withOtherQuotes(const QByteArray &abForm)
{
    QByteArray abText = abForm;
    abText.replace('"', '\x01').replace('\'', '"').replace('\x01', '\'');
    return abText;
}

QByteArray withinBrokenNesting(const QByteArray &abText)
{
    return "<p><table></p><b>" + abText + "</td>";
}

constexpr Spelling k_apfnSpellings[] = {asItIs,
                                        inCapitals,
                                        inMixedCase,
                                        withWideSpaces,
                                        withDecimalReferences,
                                        withHexReferences,
                                        withOtherQuotes,
                                        withinBrokenNesting};

CorpusText naming(QByteArray abForm, const QByteArray &abTarget, int nEncoding)
{
    return {abForm.replace(k_szTarget, abTarget), nEncoding};
}

} // namespace

std::vector<CorpusText> hostileTexts(const QByteArray &abTarget)
{
    // The markup is ASCII, which all of them share.
    constexpr int k_anEncodings[] = {DRAWINFO_ENCODING_UTF8, DRAWINFO_ENCODING_GBK, 0};
    std::vector<CorpusText> vecTexts;
    for (const char *pszForm : k_apszPlain) {
        for (const Spelling pfnSpelling : k_apfnSpellings) {
            vecTexts.push_back(naming(pfnSpelling(pszForm), abTarget, k_anEncodings[vecTexts.size() % 3]));
        }
    }
    for (const char *pszForm : k_apszOdd) {
        vecTexts.push_back(naming(pszForm, abTarget, DRAWINFO_ENCODING_UTF8));
    }
    // Cut by the end of the field, right behind the target; and with the other encoding's wide space.
    QByteArray abCut = naming("<img src=%1", abTarget, 0).abText;
    abCut.prepend("<b>" + QByteArray(XELT_DRAWINFO_TEXT_SIZE - 3 - abCut.size(), 'x'));
    vecTexts.push_back({abCut, DRAWINFO_ENCODING_UTF8});
    vecTexts.push_back(naming("<b>x</b><img\xA1\xA1src=%1>", abTarget, DRAWINFO_ENCODING_GBK));
    return vecTexts;
}

} // namespace xelttest
