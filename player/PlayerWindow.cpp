#include "PlayerWindow.h"

#include "Display.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <QWindow>

#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

constexpr int kGap = 2;                                // pixels between panes
constexpr std::chrono::milliseconds kLastPicture(150); // for the last picture to come to the screen

void printError(const QString &strText)
{
    std::fprintf(stderr, "xeltplay: %s\n", qPrintable(strText));
}

} // namespace

PlayerWindow::PlayerWindow(const Options &options) : m_options(options)
{
    setWindowTitle(QStringLiteral("xeltplay"));
    resize(options.size);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, QColor(40, 40, 40));
    setPalette(colors);
    auto *pGrid = new QGridLayout(this);
    pGrid->setContentsMargins(0, 0, 0, 0);
    pGrid->setSpacing(kGap);
    if (options.blLabelParent) {
        // Labels go to the bottom of their parent's children: right on the window the panes would hide them.
        m_pTextLayer = new QWidget(this);
        m_pTextLayer->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    for (int i = 0; i < options.nPanes; ++i) {
        addPane(i, pGrid);
    }
    if (m_pTextLayer != nullptr) {
        m_pTextLayer->raise();
    }
    m_pHelp = new HelpOverlay(this);
    m_endTimer.setSingleShot(true);
    connect(&m_endTimer, &QTimer::timeout, this, &PlayerWindow::finish);
}

// The panes end before the widgets that they release go with the window.
PlayerWindow::~PlayerWindow()
{
    m_apPanes.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void PlayerWindow::addPane(int nIndex, QGridLayout *pGrid)
{
    const int nColumns = static_cast<int>(std::ceil(std::sqrt(m_options.nPanes)));
    auto *pCell = new QVBoxLayout;
    pGrid->addLayout(pCell, nIndex / nColumns, nIndex % nColumns);
    pGrid->setRowStretch(nIndex / nColumns, 1);
    pGrid->setColumnStretch(nIndex % nColumns, 1);
    const QString strSource = m_options.pattern ? QStringLiteral("test pattern")
                                                : m_options.astrFiles[nIndex % m_options.astrFiles.size()];
    auto pPane = std::make_unique<Pane>(nIndex + 1, strSource, m_options, pCell, m_pTextLayer);
    connect(pPane.get(), &Pane::ended, this, [this, p = pPane.get()] { onPaneEnded(*p); });
    m_apPanes.push_back(std::move(pPane));
}

bool PlayerWindow::start()
{
    for (const auto &pPane : m_apPanes) {
        if (!pPane->isValid()) {
            printError(QStringLiteral("pane %1: no renderer could be created").arg(pPane->number()));
            return false;
        }
    }
    show();
    m_nRunning = static_cast<int>(m_apPanes.size());
    for (const auto &pPane : m_apPanes) {
        pPane->start();
    }
    if (m_options.seconds) {
        m_endTimer.start(std::chrono::milliseconds(std::llround(*m_options.seconds * 1000.0)));
    }
    return true;
}

void PlayerWindow::onPaneEnded(Pane &pane)
{
    waitFor(pane);
    if (--m_nRunning == 0) {
        m_endTimer.start(kLastPicture);
    }
}

// Waits for the decoding to end, and tells once what went wrong with it.
void PlayerWindow::waitFor(Pane &pane)
{
    pane.waitForDecoding();
    if (pane.problem().isEmpty() || !m_setReported.insert(pane.number()).second) {
        return;
    }
    m_blFailed = true;
    printError(QStringLiteral("pane %1: '%2' %3")
                   .arg(QString::number(pane.number()), pane.source(), pane.problem()));
}

void PlayerWindow::finish()
{
    if (m_blFinished) {
        return;
    }
    m_blFinished = true;
    if (!m_options.strScreenshot.isEmpty()) {
        saveScreenshot(m_options.strScreenshot);
    }
    for (const auto &pPane : m_apPanes) {
        pPane->stopDecoding();
    }
    for (const auto &pPane : m_apPanes) {
        waitFor(*pPane);
    }
    QCoreApplication::quit();
}

int PlayerWindow::report() const
{
    for (const auto &pPane : m_apPanes) {
        std::printf("%s\n", qPrintable(pPane->report()));
    }
    std::fflush(stdout);
    return m_blFailed ? kStatusFailed : 0;
}

void PlayerWindow::closeEvent(QCloseEvent *pEvent)
{
    finish();
    pEvent->accept();
}

void PlayerWindow::resizeEvent(QResizeEvent *pEvent)
{
    QWidget::resizeEvent(pEvent);
    if (m_pTextLayer != nullptr) {
        m_pTextLayer->setGeometry(rect());
    }
}

void PlayerWindow::keyPressEvent(QKeyEvent *pEvent)
{
    const bool blShift = (pEvent->modifiers() & Qt::ShiftModifier) != 0;
    if (!actOnPanes(pEvent->key(), blShift) && !actOnWindow(pEvent->key())) {
        QWidget::keyPressEvent(pEvent);
    }
}

bool PlayerWindow::actOnPanes(int nKey, bool blShift)
{
    switch (nKey) {
    case Qt::Key_R:
        forChosen([blShift](Pane &pane) { pane.turn(blShift); });
        return true;
    case Qt::Key_M:
        forChosen([](Pane &pane) { pane.changeMirror(); });
        return true;
    case Qt::Key_A:
        forChosen([](Pane &pane) { pane.changeRatioMode(); });
        return true;
    case Qt::Key_Z:
        forChosen([](Pane &pane) { pane.showWhole(); });
        return true;
    case Qt::Key_O:
        forChosen([](Pane &pane) { pane.toggleOverlay(); });
        return true;
    case Qt::Key_S:
    case Qt::Key_K:
        forChosen([nKey](Pane &pane) { pane.toggleStopped(nKey == Qt::Key_K); });
        return true;
    default:
        return false;
    }
}

bool PlayerWindow::actOnWindow(int nKey)
{
    switch (nKey) {
    case Qt::Key_F:
        toggleFullScreen();
        return true;
    case Qt::Key_P:
        saveScreenshot(
            QDateTime::currentDateTime().toString(QStringLiteral("'xeltplay'-yyyyMMdd-hhmmsszzz'.png'")));
        return true;
    case Qt::Key_H:
        m_pHelp->toggle();
        return true;
    case Qt::Key_Q:
    case Qt::Key_Escape:
        close();
        return true;
    default:
        if (nKey >= Qt::Key_0 && nKey <= Qt::Key_9) {
            choosePane(nKey - Qt::Key_0);
            return true;
        }
        return false;
    }
}

void PlayerWindow::forChosen(const std::function<void(Pane &)> &action)
{
    for (const auto &pPane : m_apPanes) {
        if (m_nChosen == 0 || pPane->number() == m_nChosen) {
            action(*pPane);
        }
    }
}

void PlayerWindow::choosePane(int nNumber)
{
    m_nChosen = nNumber <= static_cast<int>(m_apPanes.size()) ? nNumber : 0;
    setWindowTitle(m_nChosen == 0 ? QStringLiteral("xeltplay")
                                  : QStringLiteral("xeltplay \u2013 pane %1").arg(m_nChosen));
}

void PlayerWindow::toggleFullScreen()
{
    if (isFullScreen()) {
        showNormal();
    } else {
        showFullScreen();
    }
}

// Brings everything that has been pushed so far onto the screen.
void PlayerWindow::showPending()
{
    const QDeadlineTimer deadline(5000);
    while (!windowHandle()->isExposed() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    for (const auto &pPane : m_apPanes) {
        pPane->widget()->repaint();
    }
}

void PlayerWindow::saveScreenshot(const QString &strFile)
{
    showPending();
    QPixmap picture = grabFromScreen(*this);
    if (picture.isNull()) {
        picture = grab(); // where the system lets nobody look at the screen
    }
    if (picture.save(strFile)) {
        std::fprintf(stderr, "Screenshot: %s\n", qPrintable(QDir::current().absoluteFilePath(strFile)));
    } else {
        m_blFailed = true;
        printError(QStringLiteral("'%1' cannot be written").arg(strFile));
    }
}
