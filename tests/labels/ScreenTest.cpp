// Labels over a moving picture as the screen shows them.
#include "ImageCompare.h"
#include "LabelTest.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QThread>
#include <QWindow>

#include <atomic>
#include <cmath>
#include <thread>

namespace {

using namespace xelttest;

constexpr uint32_t k_nGreen = overlayColour(0, 255, 0);
const QRect k_rcLabel(40, 49, 240, 62); // of the record below, margins included
const QSize k_paneSize(320, 240);

// A record whose label has the geometry.
XeltDrawInfo screenText(const QByteArray &abText, const QRect &rcLabel = k_rcLabel)
{
    TextLook look;
    look.nLeft = rcLabel.left();
    look.nTop = rcLabel.top() + 11;
    look.nRight = look.nLeft + rcLabel.width();
    look.nBottom = look.nTop + rcLabel.height() - 22;
    look.nColor = k_nGreen;
    look.nSize = 24;
    return textRecord(abText, look);
}

// Grey pictures that grow brighter and darker, from a thread of their own.
class Player
{
public:
    explicit Player(void *handle) : m_thread([this, handle] { run(handle); }) {}
    ~Player()
    {
        m_blStop = true;
        m_thread.join();
    }
    Player(const Player &) = delete;
    Player &operator=(const Player &) = delete;

    int frames() const { return m_nFrames; }
    bool allShown() const { return m_nRefused == 0; }

private:
    void run(void *handle)
    {
        while (!m_blStop) {
            const auto nLuma = static_cast<uint8_t>(40 + m_nFrames % 2 * 60);
            m_nRefused += show(handle, yv12Frame(solidPlanes(64, 48, nLuma, 128, 128))) != 0 ? 1 : 0;
            ++m_nFrames;
            QThread::msleep(40);
        }
    }

    std::atomic<bool> m_blStop{false};
    std::atomic<int> m_nFrames{0};
    std::atomic<int> m_nRefused{0};
    std::thread m_thread;
};

bool isTextColour(QRgb rgb)
{
    return qGreen(rgb) > 200 && qRed(rgb) < 60 && qBlue(rgb) < 60;
}

bool isGrey(QRgb rgb, int nLevel)
{
    return std::abs(qRed(rgb) - nLevel) < 4 && std::abs(qGreen(rgb) - nLevel) < 4 &&
           std::abs(qBlue(rgb) - nLevel) < 4;
}

// What a screenshot shows of the pane, in device pixels.
struct Finding
{
    int nTextPixels = 0;
    QRect rcText; // bounding box
    int nDarkPixels = 0;
    int nBrightPixels = 0;
    int nBlackPixels = 0;
};

Finding look(const QImage &image)
{
    Finding finding;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb rgb = image.pixel(x, y);
            if (isTextColour(rgb)) {
                ++finding.nTextPixels;
                finding.rcText |= QRect(x, y, 1, 1);
            }
            finding.nDarkPixels += isGrey(rgb, 40) ? 1 : 0;
            finding.nBrightPixels += isGrey(rgb, 100) ? 1 : 0;
            finding.nBlackPixels += isGrey(rgb, 0) ? 1 : 0;
        }
    }
    return finding;
}

enum class Place { Pane, WidgetOverThePane };

class LabelScreen : public testing::TestWithParam<std::tuple<int32_t, Place>>
{
protected:
    void SetUp() override
    {
        m_pWindow = std::make_unique<HostWindow>(nullptr);
        m_pWindow->setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
        m_pWindow->move(20, 20);
        m_handle = m_pWindow->addPane(k_paneSize, Creator::CreateEx, std::get<0>(GetParam()));
        ASSERT_TRUE(m_pWindow->showAndWait());
        ASSERT_EQ(m_pWindow->devicePixelRatioF(), scaleFactor());
        if (place() == Place::WidgetOverThePane) {
            auto *pOver = new QWidget(m_pWindow.get());
            pOver->setGeometry(paneWidget(m_handle)->geometry());
            pOver->show();
            pOver->raise();
            setLabelParent(m_handle, pOver);
        }
        setDrawInfoCallback(m_handle, &OverlayHost::callback, &m_host);
    }

    static Place place() { return std::get<1>(GetParam()); }

    // What the screen shows where the pane is.
    QImage screenshot(const char *pszName) const
    {
        // Of the screen, not of the window: what Direct3D presents on Windows never gets into the window's own bits.
        QScreen *pScreen = m_pWindow->windowHandle()->screen();
        const QRect rc = m_pWindow->geometry();
        QImage image = pScreen->grabWindow(0, rc.x(), rc.y(), rc.width(), rc.height())
                           .toImage()
                           .convertToFormat(QImage::Format_RGB32);
        const auto *pInfo = testing::UnitTest::GetInstance()->current_test_info();
        QString strName = QStringLiteral("%1-%2.png").arg(pInfo->name(), pszName);
        image.save(artifactDir() + '/' + strName.replace('/', '-'));
        return image;
    }

    // Waits for a screenshot that shows the picture of one luma and, if asked for, text.
    bool waitFor(QImage &image, bool blText, bool blBright, const char *pszName) const
    {
        return pump([&] {
            image = screenshot(pszName);
            const Finding finding = look(image);
            const int nPicture = blBright ? finding.nBrightPixels : finding.nDarkPixels;
            return nPicture > image.width() * image.height() / 2 && (finding.nTextPixels > 0) == blText;
        });
    }

    OverlayHost m_host;
    std::unique_ptr<HostWindow> m_pWindow;
    void *m_handle = nullptr;
};
std::string screenName(const testing::TestParamInfo<std::tuple<int32_t, Place>> &info)
{
    return std::string(std::get<0>(info.param) == XELT_RENDERER_YUV ? "Yuv" : "SubImage") +
           (std::get<1>(info.param) == Place::Pane ? "Pane" : "WidgetOverThePane");
}
INSTANTIATE_TEST_SUITE_P(, LabelScreen,
                         testing::Combine(testing::Values(XELT_RENDERER_YUV, XELT_RENDERER_YUV_SUBIMAGE),
                                          testing::Values(Place::Pane, Place::WidgetOverThePane)),
                         screenName);

TEST_P(LabelScreen, TextStandsInItsBoxOverTheMovingPicture)
{
    m_host.vecRecords = {screenText("XELT 12:34")};
    const Player player(m_handle);
    for (const bool blBright : {false, true, false}) {
        QImage image;
        ASSERT_TRUE(waitFor(image, true, blBright, blBright ? "bright" : "dark"));
        const int nScale = scaleFactor();
        EXPECT_EQ(image.size(), k_paneSize * nScale);
        const Finding finding = look(image);
        EXPECT_GT(finding.nTextPixels, 300 * nScale * nScale);

        const QRect rcBox(k_rcLabel.topLeft() * nScale, k_rcLabel.size() * nScale);
        EXPECT_TRUE(rcBox.contains(finding.rcText));
        EXPECT_LT(finding.rcText.left() - rcBox.left(), 8 * nScale) << "text begins at the left";
        EXPECT_LT(std::abs(finding.rcText.center().y() - rcBox.center().y()), 6 * nScale)
            << "text stands in the middle";
        EXPECT_GT(finding.rcText.height(), 12 * nScale) << "24 points high letters";
        EXPECT_LT(finding.rcText.height(), 40 * nScale);
        EXPECT_EQ(finding.nBlackPixels, 0) << "the picture shows between the letters";
    }
    EXPECT_TRUE(player.allShown());
}

TEST_P(LabelScreen, NoTextIsLeftBehind)
{
    m_host.vecRecords = {screenText("XELT 12:34")};
    QImage image;
    {
        const Player player(m_handle);
        ASSERT_TRUE(waitFor(image, true, false, "before"));
    }
    drainEvents();
    m_host.vecRecords = {};
    const Player player(m_handle);
    EXPECT_TRUE(waitFor(image, false, true, "after"));
}

// A label goes below its siblings: on the pane's own window the pane covers it, and what is beside the pane
// shows.
TEST_P(LabelScreen, OnTheWindowThePaneCoversIt)
{
    m_pWindow->hostLayout()->setContentsMargins(0, 120, 0, 0);
    ASSERT_TRUE(pump([this] { return paneWidget(m_handle)->y() == 120; }));
    setLabelParent(m_handle, m_pWindow.get());
    m_host.vecRecords = {screenText("covered", k_rcLabel.translated(0, 120)), screenText("beside")};
    const Player player(m_handle);
    QImage image;
    ASSERT_TRUE(waitFor(image, true, true, "bright"));
    const int nScale = scaleFactor();
    const QRect rcBox(k_rcLabel.topLeft() * nScale, k_rcLabel.size() * nScale);
    EXPECT_TRUE(rcBox.contains(look(image).rcText));
    QWidget *pCovered = labelWithText(m_pWindow.get(), "covered");
    ASSERT_NE(pCovered, nullptr);
    pCovered->raise();
    EXPECT_TRUE(pump([&] { return look(screenshot("raised")).rcText.bottom() > 120 * nScale; }));
}

} // namespace
