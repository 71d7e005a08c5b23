#pragma once

#include <QImage>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <vector>

struct PaneLine
{
    int nPane = 0;
    qint64 nDecoded = 0;
    qint64 nPushed = 0;
    qint64 nRefused = 0;
    qint64 nPainted = 0;
    double perSecond = 0.0;
};

struct PlayerResult
{
    bool blCrashed = false; // or did not end in time
    int nStatus = -1;
    QStringList asErrors;        // lines on standard error, apart from those that tell what the player makes
    std::vector<PaneLine> panes; // as printed at the end
    QString sOutput;             // all of standard output
};

using Environment = QMap<QString, QString>;

// One run of xeltplay in the folder of the clips.
class PlayerRun
{
public:
    // Starts it. The variables are added to the environment, and those without a value taken from it; the kind
    // of GL is left to the player.
    explicit PlayerRun(const QStringList &asArguments, const Environment &environment = {},
                       const QString &sProgram = QStringLiteral(XELT_TEST_PLAYER));

    // Waits until its standard error has the text; false when it ends before or takes too long.
    bool waitForError(const QByteArray &abText);

    // Waits for its end.
    PlayerResult finish();

private:
    QProcess m_process;
};

// The leak sanitizer sometimes cannot look at a process that ends, and ends it with a status and lines of its
// own. That says nothing about the player; leaks that it finds read differently.
bool leakCheckFailed(const PlayerResult &result);

// Runs it again where the leak check failed.
PlayerResult runPlayer(const QStringList &asArguments, const Environment &environment = {});

// Runs it with a screenshot at the end; null, with a failure noted, when the run or the picture is wrong.
QImage screenshotOf(const QStringList &asArguments);

// A path in the folder of the clips that no other call has returned.
QString freshPath(const QString &sSuffix);
