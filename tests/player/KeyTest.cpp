// Keys and mouse, by way of the X server's test extension.
#include "Clips.h"
#include "PlayerRun.h"
#include "PrivateDisplay.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <cstdlib>

namespace {

// Which quarter of the clip has the colour at this place; 4 for black, -1 for none of them.
int quarterAt(const QImage &image, int x, int y)
{
    const QRgb colors[] = {qRgb(181, 179, 181), qRgb(178, 55, 41), qRgb(87, 183, 55), qRgb(55, 71, 191),
                           qRgb(0, 0, 0)};
    const QRgb pixel = image.pixel(x, y);
    for (int i = 0; i < 5; ++i) {
        if (std::abs(qRed(pixel) - qRed(colors[i])) < 6 && std::abs(qGreen(pixel) - qGreen(colors[i])) < 6 &&
            std::abs(qBlue(pixel) - qBlue(colors[i])) < 6) {
            return i;
        }
    }
    return -1;
}

bool isClipOnScreen()
{
    const QImage screen = PrivateDisplay::screen();
    for (int y = 0; y < std::min(480, screen.height()); y += 8) {
        for (int x = 0; x < std::min(640, screen.width()); x += 8) {
            if (quarterAt(screen, x, y) == 0) {
                return true;
            }
        }
    }
    return false;
}

bool waitForClipOnScreen(bool blThere)
{
    const QDeadlineTimer deadline(60000);
    while (isClipOnScreen() != blThere) {
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(20);
    }
    return true;
}

// A player that has shown its first picture, in a window of 640x480 at the top left corner of the screen.
class Session
{
public:
    explicit Session(const QStringList &asOptions = {})
        : m_blScreenFree(waitForClipOnScreen(false)),
          m_sShot(freshPath(QStringLiteral(".png"))),
          m_run(QStringList{Clips::quarters(), QStringLiteral("--loop"), QStringLiteral("--seconds"),
                            QStringLiteral("100"), QStringLiteral("--size"), QStringLiteral("640x480"),
                            QStringLiteral("--screenshot"), m_sShot} +
                asOptions)
    {
        EXPECT_TRUE(m_blScreenFree) << "the window of the player before is still there";
        EXPECT_TRUE(waitForClipOnScreen(true)) << "the player shows nothing";
        input({"mousemove", "5", "5"});
    }

    static void input(const QList<QByteArray> &arguments)
    {
        QStringList asArguments;
        for (const QByteArray &argument : arguments) {
            asArguments << QString::fromLatin1(argument);
        }
        EXPECT_EQ(QProcess::execute(QStringLiteral("xdotool"), asArguments), 0);
    }

    static void press(const QList<QByteArray> &keys)
    {
        input(QList<QByteArray>{"key", "--delay", "60"} + keys);
    }

    static void drag(const QByteArray &x0, const QByteArray &y0, const QByteArray &x1, const QByteArray &y1)
    {
        input({"mousemove", x0, y0, "mousedown", "1", "mousemove", x1, y0, "mousemove", x1, y1, "mouseup",
               "1"});
    }

    // Waits until a screenshot that was asked for by key is written.
    bool waitForScreenshot() { return m_run.waitForError("Screenshot: "); }

    // Quits by key; image() is what was on screen then.
    PlayerResult quit()
    {
        QThread::msleep(400); // for a picture or two after the last key
        press({"q"});
        PlayerResult result = m_run.finish();
        EXPECT_FALSE(result.blCrashed);
        EXPECT_TRUE(result.nStatus == 0 || leakCheckFailed(result))
            << qPrintable(result.asErrors.join(QLatin1Char('\n')));
        m_image = QImage(m_sShot).convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(m_image.size(), QSize(640, 480));
        return result;
    }

    const QImage &image() const { return m_image; }

private:
    const bool m_blScreenFree;
    QString m_sShot;
    PlayerRun m_run;
    QImage m_image;
};

// Top left, top right, bottom left, bottom right of the window.
std::vector<int> quarters(const QImage &image)
{
    return {quarterAt(image, 200, 120), quarterAt(image, 440, 120), quarterAt(image, 200, 360),
            quarterAt(image, 440, 360)};
}

using Four = std::vector<int>;

} // namespace

TEST(Keys, noneLeavesThePictureAlone)
{
    Session session;
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{0, 1, 2, 3}));
}

TEST(Keys, turn)
{
    Session session;
    session.press({"r"});
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{2, 0, 3, 1}));
    EXPECT_EQ(quarterAt(session.image(), 70, 240), 4); // proportions kept
}

TEST(Keys, turnBackAndMirror)
{
    Session session;
    session.press({"shift+r", "m"});
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{3, 1, 2, 0}));
}

TEST(Keys, ratioMode)
{
    Session session;
    session.press({"r", "a"});
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{2, 0, 3, 1}));
    EXPECT_EQ(quarterAt(session.image(), 70, 120), 2); // filled
}

TEST(Keys, dragMagnifiesAndDoubleClickShowsAllAgain)
{
    Session session;
    session.drag("400", "60", "560", "180");
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{1, 1, 1, 1}));

    Session again;
    again.drag("400", "60", "560", "180");
    again.input({"mousemove", "100", "100", "click", "--repeat", "2", "--delay", "50", "1"});
    again.quit();
    EXPECT_EQ(quarters(again.image()), (Four{0, 1, 2, 3}));
}

// What is marked is what comes, also in a picture that was turned: its top right is the clip's top left.
TEST(Keys, dragInATurnedPicture)
{
    Session session;
    session.press({"r"});
    session.drag("400", "60", "460", "105");
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{0, 0, 0, 0}));
}

TEST(Keys, stopTurnsBlack)
{
    Session session;
    session.press({"s"});
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{4, 4, 4, 4}));
}

TEST(Keys, stopTurnsTheOtherRenderersPaneBlackToo)
{
    Session session({QStringLiteral("--renderer"), QStringLiteral("subimage")});
    session.press({"s"});
    session.quit();
    EXPECT_EQ(quarters(session.image()), (Four{4, 4, 4, 4}));

    // The same pane without the key.
    Session playing({QStringLiteral("--renderer"), QStringLiteral("subimage")});
    playing.quit();
    EXPECT_EQ(quarters(playing.image()), (Four{0, 1, 2, 3}));
}

TEST(Keys, stopKeepsThePictureAndPushesNoMore)
{
    Session session({QStringLiteral("--panes"), QStringLiteral("2"), QStringLiteral("--fill")});
    session.press({"2", "k"});
    QThread::msleep(2000);
    const PlayerResult result = session.quit();
    EXPECT_EQ(quarterAt(session.image(), 400, 120), 0);
    EXPECT_EQ(quarterAt(session.image(), 560, 360), 3);
    ASSERT_EQ(result.panes.size(), 2U);
    EXPECT_EQ(result.panes[1].nRefused, 0);
    EXPECT_GT(result.panes[0].nPushed, result.panes[1].nPushed + 15); // the other went on for 2 seconds
}

TEST(Keys, goesOnAfterStopsWithItsPlaceAndOverlay)
{
    for (const char *pKey : {"s", "k"}) {
        SCOPED_TRACE(pKey);
        Session session({QStringLiteral("--rotate"), QStringLiteral("90"), QStringLiteral("--overlay")});
        session.press({pKey, pKey});
        session.quit();
        EXPECT_EQ(quarterAt(session.image(), 70, 240), 4);
        EXPECT_EQ(quarterAt(session.image(), 440, 160), 0);
        bool blNameThere = false;
        for (int x = 0; x < 120; ++x) {
            for (int y = 5; y < 45; ++y) {
                blNameThere = blNameThere || qGray(session.image().pixel(x, y)) > 200;
            }
        }
        EXPECT_TRUE(blNameThere);
    }
}

TEST(Keys, overlayOnAndOff)
{
    const auto countYellow = [](const QImage &image) {
        int nCount = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                nCount += image.pixel(x, y) == qRgb(255, 255, 0) ? 1 : 0;
            }
        }
        return nCount;
    };
    Session session;
    session.press({"o"});
    session.quit();
    EXPECT_GT(countYellow(session.image()), 500);

    Session off({QStringLiteral("--overlay")});
    off.press({"o"});
    off.quit();
    EXPECT_EQ(countYellow(off.image()), 0);
    EXPECT_EQ(quarterAt(off.image(), 15, 26), 0); // the name has gone
}

TEST(Keys, helpLiesOverThePicture)
{
    Session session;
    session.press({"h"});
    session.quit();
    int nWhite = 0;
    for (int y = 24; y < 200; ++y) {
        for (int x = 24; x < 300; ++x) {
            nWhite += qGray(session.image().pixel(x, y)) > 230 ? 1 : 0;
        }
    }
    EXPECT_GT(nWhite, 300);
    EXPECT_EQ(quarterAt(session.image(), 620, 460), 3);
}

TEST(Keys, chosenPaneOnly)
{
    Session session({QStringLiteral("--panes"), QStringLiteral("2"), QStringLiteral("--fill")});
    session.press({"2", "m"});
    session.quit();
    EXPECT_EQ(quarterAt(session.image(), 80, 120), 0);
    EXPECT_EQ(quarterAt(session.image(), 240, 120), 1);
    EXPECT_EQ(quarterAt(session.image(), 400, 120), 1);
    EXPECT_EQ(quarterAt(session.image(), 560, 120), 0);
}

TEST(Keys, screenshot)
{
    const QStringList asPattern{QStringLiteral("xeltplay-*.png")};
    for (const QString &sOld : QDir(Clips::folder()).entryList(asPattern)) {
        QFile::remove(Clips::folder() + QLatin1Char('/') + sOld);
    }
    Session session;
    session.press({"p"});
    ASSERT_TRUE(session.waitForScreenshot());
    session.quit();
    const QStringList asNew = QDir(Clips::folder()).entryList(asPattern);
    ASSERT_EQ(asNew.size(), 1);
    const QImage image(Clips::folder() + QLatin1Char('/') + asNew[0]);
    EXPECT_EQ(image.size(), QSize(640, 480));
    EXPECT_EQ(quarters(image), (Four{0, 1, 2, 3}));
}
