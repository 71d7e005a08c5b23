#include "widget/LabelText.h"

#include <QRegularExpression>
#include <QTextDocument>
#include <algorithm>
#include <iterator>

namespace labels {

namespace {

// A character reference may spell another one; Qt resolves them once.
constexpr int kPasses = 4;

// Where Qt's parsers learn what to load. A link needs its href, a picture its img; a style sheet's import may
// come with nothing but a string.
constexpr const char *kLoadingWords[] = {"img", "src", "href", "background", "url", "@import"};

// Qt makes a cell for each row and column that one spans.
constexpr const char *kSpanningWords[] = {"colspan", "rowspan"};

// The character that a reference like "&#105;" or "&#x69" stands for, empty when it is none; nEnd is behind
// it. Numbers are as sloppy as Qt takes them. Of the named ones none stands for a letter that matters.
QString Referenced(const QString &strText, int nStart, int &nEnd)
{
    const int nSemicolon = strText.indexOf(QLatin1Char(';'), nStart);
    const int nStop = nSemicolon < 0 ? strText.size() : nSemicolon;
    nEnd = nSemicolon < 0 ? nStop : nStop + 1;
    if (strText.midRef(nStart, 2) != QLatin1String("&#")) {
        return QString();
    }
    QStringRef digits = strText.midRef(nStart + 2, nStop - nStart - 2);
    const bool blHex = digits.startsWith(QLatin1Char('x'), Qt::CaseInsensitive);
    digits = digits.mid(blHex ? 1 : 0);
    bool blNumber = false;
    const uint nCode = digits.toUInt(&blNumber, blHex ? 16 : 10);
    return blNumber ? QString::fromUcs4(&nCode, 1) : QString();
}

QString WithoutReferences(const QString &strText)
{
    QString strPlain;
    int nEnd = 0;
    for (int i = 0; i < strText.size(); i = nEnd) {
        const QString strCharacter = Referenced(strText, i, nEnd);
        if (strCharacter.isEmpty()) {
            nEnd = i + 1;
        }
        strPlain += strCharacter.isEmpty() ? QString(strText.at(i)) : strCharacter;
    }
    return strPlain;
}

template <size_t nCount> bool ContainsAny(const QString &strText, const char *const (&aWords)[nCount])
{
    return std::any_of(std::begin(aWords), std::end(aWords),
                       [&strText](const char *pszWord) { return strText.contains(QLatin1String(pszWord)); });
}

// Escapes can spell every word of a style sheet. So can comments and stray end tags within a style element,
// from which Qt drops them.
bool HidesWords(const QString &strFolded)
{
    if (!strFolded.contains(QLatin1String("style"))) {
        return false;
    }
    QString strTight;
    std::copy_if(strFolded.begin(), strFolded.end(), std::back_inserter(strTight),
                 [](QChar c) { return !c.isSpace() && c != QLatin1Char('"') && c != QLatin1Char('\''); });
    return strFolded.contains(QLatin1Char('\\')) || strTight.contains(QLatin1String("<style"));
}

// Whether a number of five digits or more, with an exponent, or infinite may be the value of an attribute or,
// where there are styles, of a property; colours are none. Qt may lay a page of such a size out without end.
bool GivesHugeSizes(const QString &strFolded)
{
    static const QRegularExpression attribute(
        QStringLiteral(R"([="'](?:[^<>=:"'#]|#[0-9a-z]*+)*?(?:\d{5}|\d\.?e[+-]?\d|\b(?:inf|nan)))"));
    static const QRegularExpression property(
        QStringLiteral(R"([=:"'](?:[^<>=:"'#]|#[0-9a-z]*+)*?(?:\d{5}|\d\.?e[+-]?\d|\b(?:inf|nan))|/\*)"));
    const bool blStyled = strFolded.contains(QLatin1String("style"));
    return strFolded.contains(blStyled ? property : attribute);
}

// Whether it is so of the text, case aside, as it is or after its character references are resolved.
template <typename Predicate> bool InAnyReading(QString strText, Predicate predicate)
{
    for (int i = 0; i < kPasses; ++i) {
        if (predicate(strText.toCaseFolded())) {
            return true;
        }
        const QString strNext = WithoutReferences(strText);
        if (strNext == strText) {
            return false;
        }
        strText = strNext;
    }
    return true; // nobody nests them so deep in good faith
}

} // namespace

bool NamesSomethingToLoad(const QString &strText)
{
    return InAnyReading(strText, [](const QString &strFolded) {
        return ContainsAny(strFolded, kLoadingWords) || HidesWords(strFolded);
    });
}

bool CouldTakeForever(const QString &strText)
{
    return InAnyReading(strText, [](const QString &strFolded) {
        return ContainsAny(strFolded, kSpanningWords) || GivesHugeSizes(strFolded);
    });
}

Qt::TextFormat FormatFor(const QString &strText)
{
    const bool blFollowed =
        !Qt::mightBeRichText(strText) || (!NamesSomethingToLoad(strText) && !CouldTakeForever(strText));
    return blFollowed ? Qt::AutoText : Qt::PlainText;
}

} // namespace labels
