// The three encodings, and where the text of a record ends.
#include "LabelTest.h"
#include "MissingCodec.h"

#include <gmock/gmock.h>

#include <QTextCodec>

#include <cstring>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::SizeIs;

constexpr int k_nAllEncodings[] = {DRAWINFO_ENCODING_GBK, DRAWINFO_ENCODING_UTF8, 0};

// Sets what the system's local 8-bit code page is.
class LocalCodePage
{
public:
    explicit LocalCodePage(const char *pszName) : m_pBefore(QTextCodec::codecForLocale())
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(pszName));
    }
    ~LocalCodePage() { QTextCodec::setCodecForLocale(m_pBefore); }
    LocalCodePage(const LocalCodePage &) = delete;
    LocalCodePage &operator=(const LocalCodePage &) = delete;

private:
    QTextCodec *m_pBefore;
};

// Hands over one record whose last byte is followed by an unreadable page.
struct GuardedHost
{
    GuardedBytes record;

    static int32_t callback(void *, const XeltDrawInfoRequest *pRequest, int32_t, void *pUser)
    {
        const auto *pHost = static_cast<const GuardedHost *>(pUser);
        return pRequest->pfnReceiver(pHost->record.data(), static_cast<int32_t>(pHost->record.size()),
                                     pRequest->pObject);
    }
};

XeltDrawInfo encoded(const QByteArray &abText, int nEncoding)
{
    TextLook look;
    look.nEncoding = nEncoding;
    return textRecord(abText, look);
}

class LabelEncoding : public LabelTest
{
protected:
    QString shown(const XeltDrawInfo &record)
    {
        rebuild({record});
        const std::vector<QLabel *> labels = labelsOn(pane());
        return labels.size() == 1 ? labels[0]->text() : QStringLiteral("not one label");
    }
    QString shown(const QByteArray &abText, int nEncoding) { return shown(encoded(abText, nEncoding)); }

    // The first bytes of the record at the end of readable memory.
    QString shownGuarded(const XeltDrawInfo &record, size_t nBytes)
    {
        m_guarded.record = GuardedBytes(nBytes);
        std::memcpy(m_guarded.record.data(), &record, nBytes);
        setDrawInfoCallback(handle(), &GuardedHost::callback, &m_guarded);
        return shown(record);
    }

    GuardedHost m_guarded;
};
XELT_FOR_BOTH_RENDERERS(LabelEncoding);

TEST_P(LabelEncoding, Utf8)
{
    EXPECT_EQ(shown("Gr\xC3\xB6\xC3\x9F"
                    "e \xE6\x97\xB6\xE9\x97\xB4 \xF0\x9F\x8E\xA5",
                    DRAWINFO_ENCODING_UTF8),
              QString::fromUtf16(u"Gr\u00F6\u00DFe \u65F6\u95F4 \U0001F3A5"));
}

TEST_P(LabelEncoding, Gbk)
{
    EXPECT_EQ(shown("Cam 1 \xCA\xB1\xBC\xE4", DRAWINFO_ENCODING_GBK),
              QString::fromUtf16(u"Cam 1 \u65F6\u95F4"));
}

TEST_P(LabelEncoding, EveryOtherValueIsTheLocalCodePage)
{
    {
        const LocalCodePage latin("ISO-8859-1");
        for (const int nEncoding : {0, 3, -1, INT32_MAX, INT32_MIN}) {
            EXPECT_EQ(shown("K\xE4se", nEncoding), QString::fromUtf16(u"K\u00E4se")) << nEncoding;
        }
    }
    const LocalCodePage cyrillic("KOI8-R");
    EXPECT_EQ(shown("\xC1\xC2", 0), QString::fromUtf16(u"\u0430\u0431"));
}

TEST_P(LabelEncoding, TheCodePageDoesNotTouchTheOthers)
{
    const LocalCodePage latin("ISO-8859-1");
    EXPECT_EQ(shown("\xC3\xB6", DRAWINFO_ENCODING_UTF8), QString::fromUtf16(u"\u00F6"));
    EXPECT_EQ(shown("\xCA\xB1", DRAWINFO_ENCODING_GBK), QString::fromUtf16(u"\u65F6"));
}

TEST_P(LabelEncoding, WithoutTheGbkCodecTheLabelIsBlankInItsSlot)
{
    rebuild({textRecord("first"), encoded("was here", DRAWINFO_ENCODING_GBK)});
    ASSERT_THAT(textsOn(pane()), ElementsAre("was here", "first"));

    const MissingCodec missing("GBK");
    TextLook look;
    look.nEncoding = DRAWINFO_ENCODING_GBK;
    look.nLeft = 40;
    rebuild({textRecord("second"), textRecord("\xCA\xB1\xBC\xE4", look)});
    EXPECT_GT(MissingCodec::lookups(), 0);
    EXPECT_THAT(textsOn(pane()), ElementsAre(QString(), "second"));
    EXPECT_EQ(labelsOn(pane())[0]->geometry(), QRect(40, 9, 170, 62));
    rebuild({textRecord("third"), encoded("plain", DRAWINFO_ENCODING_GBK), textRecord("last")});
    EXPECT_THAT(textsOn(pane()), ElementsAre("last", QString(), "third"));
}

TEST_P(LabelEncoding, TextOfEveryLengthEndsWithinItsField)
{
    for (const int nEncoding : k_nAllEncodings) {
        for (const int nLength : {1, 2, 135, 136}) {
            const QByteArray abText = QByteArray(nLength - 1, 'x') + 'y';
            XeltDrawInfo record = encoded(abText, nEncoding);
            record.fOpacity = 1.5F; // no zero byte at once behind a full field
            EXPECT_EQ(shownGuarded(record, sizeof(record)), QString::fromLatin1(abText))
                << nLength << " bytes in encoding " << nEncoding;
        }
    }
}

TEST_P(LabelEncoding, NoTextIsNoLabel)
{
    for (const int nEncoding : k_nAllEncodings) {
        XeltDrawInfo record = encoded("", nEncoding);
        std::memset(record.aText + 1, 'z', sizeof(record.aText) - 1);
        shownGuarded(record, sizeof(record));
        EXPECT_THAT(labelsOn(pane()), SizeIs(0)) << nEncoding;
    }
}

TEST_P(LabelEncoding, NothingBehindTheTerminatorIsShown)
{
    XeltDrawInfo record = encoded(QByteArray(136, 'x'), DRAWINFO_ENCODING_UTF8);
    record.aText[5] = '\0';
    EXPECT_EQ(shownGuarded(record, sizeof(record)), "xxxxx");
    record.aText[1] = '\0';
    EXPECT_EQ(shownGuarded(record, sizeof(record)), "x");
}

TEST_P(LabelEncoding, RecordsCutWithinTheTextAreFilledWithZeros)
{
    const LocalCodePage latin("ISO-8859-1"); // the encoding is cut off too
    const XeltDrawInfo record = encoded("abcdef", DRAWINFO_ENCODING_UTF8);
    const size_t nText = offsetof(XeltDrawInfo, aText);
    EXPECT_EQ(shownGuarded(record, nText + 3), "abc");
    EXPECT_EQ(shownGuarded(record, nText + 1), "a");
    EXPECT_EQ(shownGuarded(encoded(QByteArray(136, 'x'), DRAWINFO_ENCODING_UTF8), nText + 136),
              QString(136, QLatin1Char('x')));
}

TEST_P(LabelEncoding, RecordsCutBeforeTheTextShowNothing)
{
    shownGuarded(encoded("abcdef", DRAWINFO_ENCODING_UTF8), offsetof(XeltDrawInfo, aText));
    EXPECT_THAT(labelsOn(pane()), SizeIs(0));
    shownGuarded(encoded("abcdef", DRAWINFO_ENCODING_UTF8), 1);
    EXPECT_THAT(labelsOn(pane()), SizeIs(0));
}

// What is whole stays as it is, and each broken piece shows as replacement characters.
TEST_P(LabelEncoding, BrokenUtf8)
{
    const QByteArray abBroken[] = {
        "\x80",                 // continuation without a start
        "\xC3",                 // start without a continuation
        "\xC0\xAF",             // overlong
        "\xED\xA0\x80",         // surrogate
        "\xF4\x90\x80\x80",     // beyond the last code point
        "\xF8\x88\x80\x80\x80", // five bytes
        "\xFF\xFE",             // never valid
    };
    for (const QByteArray &ab : abBroken) {
        QString strText = shown("ab" + ab + "cd", DRAWINFO_ENCODING_UTF8);
        EXPECT_TRUE(strText.contains(QChar::ReplacementCharacter)) << ab.toHex().constData();
        EXPECT_EQ(strText.remove(QChar::ReplacementCharacter), "abcd") << ab.toHex().constData();
    }
}

TEST_P(LabelEncoding, CharacterCutByTheEndOfTheField)
{
    const QByteArray abText = QByteArray(134, 'a') + "\xE6\x97"; // the third byte does not fit
    QString strText = shownGuarded(encoded(abText, DRAWINFO_ENCODING_UTF8), sizeof(XeltDrawInfo));
    EXPECT_TRUE(strText.endsWith(QChar::ReplacementCharacter));
    EXPECT_EQ(strText.remove(QChar::ReplacementCharacter), QString(134, QLatin1Char('a')));

    strText =
        shownGuarded(encoded(QByteArray(135, 'a') + "\xCA", DRAWINFO_ENCODING_GBK), sizeof(XeltDrawInfo));
    EXPECT_TRUE(strText.startsWith(QString(135, QLatin1Char('a'))));
    EXPECT_LE(strText.size(), 136);
}

TEST_P(LabelEncoding, BrokenGbk)
{
    for (const QByteArray &ab : {QByteArray("\xFF\xFF"), QByteArray("\x81\x20"), QByteArray("\xFE\x01")}) {
        const QString strText = shown("ab" + ab + "cd", DRAWINFO_ENCODING_GBK);
        EXPECT_TRUE(strText.startsWith(QStringLiteral("ab"))) << ab.toHex().constData();
        EXPECT_TRUE(strText.endsWith(QStringLiteral("cd"))) << ab.toHex().constData();
        EXPECT_LE(strText.size(), 6) << ab.toHex().constData() << ' ' << strText.toStdString();
    }
    // A broken end leaves the next text alone.
    EXPECT_TRUE(shown("ab\xCA", DRAWINFO_ENCODING_GBK).startsWith(QStringLiteral("ab")));
    EXPECT_EQ(shown("\xB1\xB1", DRAWINFO_ENCODING_GBK), QString::fromUtf16(u"\u5317"));
}

} // namespace
