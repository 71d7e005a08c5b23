// Text and numbers that a careless or hostile host may send.
#include "FileWatch.h"
#include "HostileCorpus.h"
#include "LabelTest.h"

#include <QDir>
#include <QHostAddress>
#include <QImage>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>

namespace {

using namespace xelttest;

// A local port that counts who connects.
class Listener
{
public:
    Listener() { m_blReady = m_server.listen(QHostAddress::LocalHost); }

    bool isReady() const { return m_blReady; }
    quint16 port() const { return m_server.serverPort(); }
    int connections()
    {
        constexpr int k_nWaitMs = 100;
        int nCount = 0;
        while (m_server.hasPendingConnections() || m_server.waitForNewConnection(k_nWaitMs)) {
            delete m_server.nextPendingConnection();
            ++nCount;
        }
        return nCount;
    }

private:
    QTcpServer m_server;
    bool m_blReady = false;
};

class HostileText : public LabelTest
{
protected:
    void SetUp() override
    {
        LabelTest::SetUp();
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(Qt::red);
        m_strImage = m_dir.filePath(QStringLiteral("secret.png"));
        ASSERT_TRUE(image.save(m_strImage));
        ASSERT_LT(m_strImage.size(), 80);
    }

    QByteArray imageUrl() const { return QUrl::fromLocalFile(m_strImage).toEncoded(); }
    QByteArray imageTag() const { return "<img src=\"" + imageUrl() + "\">"; }

    // Shows the text, paints the whole window, and answers with the label's text.
    QString shown(const QByteArray &abText, int nEncoding = DRAWINFO_ENCODING_UTF8)
    {
        TextLook look;
        look.nEncoding = nEncoding;
        rebuild({textRecord(abText, look)});
        m_pWindow->grab();
        const std::vector<QLabel *> labels = labelsOn(pane());
        return labels.size() == 1 ? labels[0]->text() : QStringLiteral("not one label");
    }

    // Shows as many of the texts at once as there are labels, until all were painted.
    void showAll(const std::vector<CorpusText> &vecTexts)
    {
        for (size_t nFirst = 0; nFirst < vecTexts.size(); nFirst += k_nLabelLimit) {
            std::vector<XeltDrawInfo> vecRecords;
            for (size_t i = nFirst; i < std::min(nFirst + k_nLabelLimit, vecTexts.size()); ++i) {
                TextLook look;
                look.nEncoding = vecTexts[i].nEncoding;
                vecRecords.push_back(textRecord(vecTexts[i].abText, look));
            }
            const size_t nCount = vecRecords.size();
            rebuild(std::move(vecRecords));
            m_pWindow->grab();
            expectPlainLabels(nCount);
        }
    }

    // The path is short, so that there is room for markup around it.
    QTemporaryDir m_dir{QDir::temp().filePath(QStringLiteral("x-XXXXXX"))};
    QString m_strImage;

private:
    void expectPlainLabels(size_t nCount)
    {
        size_t nShown = 0;
        for (const QLabel *pLabel : labelsOn(pane())) {
            if (!pLabel->text().isEmpty()) {
                ++nShown;
                EXPECT_EQ(pLabel->textFormat(), Qt::PlainText) << pLabel->text().toStdString();
            }
        }
        EXPECT_EQ(nShown, nCount);
    }
};
XELT_FOR_BOTH_RENDERERS(HostileText);

// The watch notices what a label that follows the markup opens.
TEST_P(HostileText, RichTextWouldOpenTheFile)
{
    const FileWatch watch(m_strImage);
    ASSERT_TRUE(watch.isReady());
    QLabel label(QString::fromUtf8(imageTag()));
    label.grab();
    EXPECT_TRUE(watch.wasTouched());
    EXPECT_FALSE(watch.wasTouched());
}

TEST_P(HostileText, TheWatchNoticesQuestions)
{
    const FileWatch watch(m_strImage);
    EXPECT_TRUE(QFileInfo::exists(m_strImage));
    EXPECT_TRUE(watch.wasTouched());
    EXPECT_FALSE(QFileInfo::exists(m_dir.filePath(QStringLiteral("other.png"))));
    EXPECT_FALSE(watch.wasTouched());
}

// Otherwise the corpus would show nothing.
TEST_P(HostileText, ManyTextsOfTheCorpusWouldOpenTheFile)
{
    const FileWatch watch(m_strImage);
    ASSERT_TRUE(watch.isReady());
    const std::vector<CorpusText> vecTexts = hostileTexts(m_strImage.toUtf8());
    const auto nOpening = std::count_if(vecTexts.begin(), vecTexts.end(), [&](const CorpusText &text) {
        QLabel label(QString::fromUtf8(text.abText));
        label.setTextFormat(Qt::RichText);
        label.grab();
        return watch.wasTouched();
    });
    EXPECT_GE(nOpening, 100);
    EXPECT_GE(vecTexts.size(), 200U);
}

TEST_P(HostileText, TheCorpusIsMarkupThatFitsTheField)
{
    for (const CorpusText &text : hostileTexts(m_strImage.toUtf8())) {
        EXPECT_LE(text.abText.size(), XELT_DRAWINFO_TEXT_SIZE) << text.abText.constData();
        EXPECT_TRUE(Qt::mightBeRichText(QString::fromUtf8(text.abText))) << text.abText.constData();
    }
}

TEST_P(HostileText, NothingOfTheCorpusTouchesTheFile)
{
    const FileWatch watch(m_strImage);
    ASSERT_TRUE(watch.isReady());
    showAll(hostileTexts(m_strImage.toUtf8()));
    showAll(hostileTexts(imageUrl()));
    EXPECT_FALSE(watch.wasTouched());
}

TEST_P(HostileText, NothingOfTheCorpusReachesTheNetwork)
{
    Listener listener;
    ASSERT_TRUE(listener.isReady());
    showAll(hostileTexts("http://127.0.0.1:" + QByteArray::number(listener.port()) + "/a.png"));
    drainEvents();
    EXPECT_EQ(listener.connections(), 0);
}

TEST_P(HostileText, MarkupIsShownAsItIsAndOpensNoFile)
{
    const FileWatch watch(m_strImage);
    ASSERT_TRUE(watch.isReady());
    const QByteArray abPath = m_strImage.toUtf8();
    for (const int nEncoding : {int{DRAWINFO_ENCODING_UTF8}, int{DRAWINFO_ENCODING_GBK}, 0}) {
        for (const QByteArray &abText :
             {imageTag(), "<img src=\"" + abPath + "\"/>", "<b>x</b><img src=" + abPath + ">",
              "<p style=\"background-image:url(" + abPath + ")\">x</p>",
              "<link rel=stylesheet href=\"" + abPath + "\">",
              "<html><body background=\"" + imageUrl() + "\">x"}) {
            ASSERT_LE(abText.size(), XELT_DRAWINFO_TEXT_SIZE);
            EXPECT_EQ(shown(abText, nEncoding), QString::fromUtf8(abText));
        }
    }
    EXPECT_FALSE(watch.wasTouched());
}

TEST_P(HostileText, MarkupThatPlainTextReplacesOpensNoFile)
{
    const FileWatch watch(m_strImage);
    ASSERT_TRUE(watch.isReady());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(shown(imageTag()), QString::fromUtf8(imageTag()));
        EXPECT_EQ(shown("plain"), "plain");
        EXPECT_EQ(labelsOn(pane())[0]->textFormat(), Qt::AutoText);
        EXPECT_EQ(shown(imageTag()), QString::fromUtf8(imageTag()));
        EXPECT_EQ(shown("<b>rich</b>"), "<b>rich</b>");
    }
    shown(imageTag());
    rebuild({});
    shown("plain");
    EXPECT_FALSE(watch.wasTouched());
}

TEST_P(HostileText, MarkupReachesNoNetwork)
{
    Listener listener;
    ASSERT_TRUE(listener.isReady());
    const QByteArray abAddress = "http://127.0.0.1:" + QByteArray::number(listener.port());
    const QByteArray abText = "<img src=\"" + abAddress + "/a.png\"><a href=\"" + abAddress + "\">x</a>";
    EXPECT_EQ(shown(abText), QString::fromUtf8(abText));
    EXPECT_EQ(shown("plain"), "plain");
    drainEvents();
    EXPECT_EQ(listener.connections(), 0);
    // And the count is not blind:
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, listener.port());
    EXPECT_TRUE(socket.waitForConnected());
    EXPECT_EQ(listener.connections(), 1);
}

TEST_P(HostileText, NestedTagsCutByTheEndOfTheField)
{
    QByteArray abText;
    while (abText.size() < XELT_DRAWINFO_TEXT_SIZE) {
        abText += "<table><tr><td>";
    }
    abText.truncate(XELT_DRAWINFO_TEXT_SIZE);
    EXPECT_EQ(shown(abText), QString::fromLatin1(abText));
    abText = QByteArray(XELT_DRAWINFO_TEXT_SIZE, '<');
    EXPECT_EQ(shown(abText), QString::fromLatin1(abText));
}

TEST_P(HostileText, PlainTextStaysExact)
{
    for (const char *pszText :
         {"a < b && c > d", "&File", "50 %1 %n %s", "a\nb\r\n\tc", " leading and trailing ", "\x01\x7F",
          "{}\\n\"'", "<", "<3", "&lt;b&gt;", "100%",
          "\xE2\x80\xAE\xE2\x80\x8F"
          "abc"}) {
        EXPECT_EQ(shown(pszText), QString::fromUtf8(pszText));
    }
}

} // namespace
