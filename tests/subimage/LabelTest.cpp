// Labels of the sub-image renderer: each paint brings them up to date by itself.
#include "SubImageTest.h"

#include <QLabel>
#include <QScreen>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace xelttest {
namespace {

XeltDrawInfo text(const char *pText, int left, int top, int right, int bottom)
{
    XeltDrawInfo record =
        overlayRecord(DRAWINFO_TEXT, {{left, top}, {right, bottom}}, overlayColour(0, 255, 0), 12);
    record.nTextEncoding = DRAWINFO_ENCODING_UTF8;
    std::strncpy(record.aText, pText, sizeof record.aText - 1);
    return record;
}

class SubImageLabelTest : public SubImageTest
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(241, 177));
    }

    // The texts that labels on the widget show, blank ones left out.
    static QStringList texts(const QWidget *pWidget)
    {
        QStringList list;
        for (const QLabel *pLabel : pWidget->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!pLabel->text().isEmpty()) {
                list.append(pLabel->text());
            }
        }
        list.sort();
        return list;
    }
    QStringList paneTexts() const { return texts(paneWidget(handle())); }
    void submitTexts(const std::vector<XeltDrawInfo> &vecRecords)
    {
        submitWithOverlays(ofType(VIDEO_DISPLAY_YV12), vecRecords);
    }
    // The pane's part of the X server's screen, in device pixels.
    QImage screen()
    {
        drainEvents();
        const QPoint origin = paneWidget(handle())->mapToGlobal(QPoint(0, 0));
        return window()
            .screen()
            ->grabWindow(0, origin.x(), origin.y(), m_view.widgetSize.width(), m_view.widgetSize.height())
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    }
    static int pixelsOf(int nWidgetPixels) { return nWidgetPixels * scaleFactor() * scaleFactor(); }
    // Device pixels of about that colour in a rectangle of widget pixels.
    static int count(const QImage &image, const std::array<int, 3> &aRgb, const QRect &where)
    {
        const int nScale = scaleFactor();
        int nCount = 0;
        for (int y = where.y() * nScale; y < (where.y() + where.height()) * nScale; ++y) {
            for (int x = where.x() * nScale; x < (where.x() + where.width()) * nScale; ++x) {
                const auto aPixel = rgbAt(image, x, y);
                const bool blAlike = std::equal(aPixel.begin(), aPixel.end(), aRgb.begin(),
                                                [](int a, int b) { return std::abs(a - b) <= 3; });
                nCount += blAlike ? 1 : 0;
            }
        }
        return nCount;
    }
    void setLabelParent(QWidget *pParent)
    {
        ASSERT_EQ(Xelt_SetParam(handle(), XELTCMD_SET_LABEL_PARENT, pParent, sizeof pParent), 0);
    }
};

// The paint itself does it: no event is delivered between the submission and the labels.
TEST_F(SubImageLabelTest, APaintBringsTheLabels)
{
    submit(ofType(VIDEO_DISPLAY_YV12));
    drainEvents();
    submitTexts({text("one", 10, 20, 210, 60)});
    EXPECT_TRUE(paneTexts().isEmpty()) << "not before a paint";
    picture();
    EXPECT_EQ(paneTexts(), QStringList{"one"});
    submitTexts({text("two", 10, 20, 210, 60), text("three", 10, 80, 210, 120)});
    EXPECT_EQ(paneTexts(), QStringList{"one"});
    picture();
    EXPECT_EQ(paneTexts(), (QStringList{"three", "two"}));
    submitTexts({});
    picture();
    EXPECT_TRUE(paneTexts().isEmpty());
}

TEST_F(SubImageLabelTest, TheLabelIsPlacedAndStyledAsItsRecordSays)
{
    submitTexts({text("label", 10, 20, 210, 60)});
    picture();
    const auto labels = paneWidget(handle())->findChildren<QLabel *>();
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels[0]->geometry(), QRect(10, 9, 200, 62));
    EXPECT_EQ(labels[0]->font().pointSize(), 12);
    EXPECT_EQ(labels[0]->styleSheet(), "color: rgb(0, 255, 0);background-color: rgb(0, 0, 0);");
    EXPECT_TRUE(labels[0]->isVisible());
}

TEST_F(SubImageLabelTest, HiddenPanesGetTheirLabelsWhenTheyArePainted)
{
    drainEvents();
    window().hide();
    drainEvents();
    submitTexts({text("hidden", 10, 20, 210, 60)});
    drainEvents();
    EXPECT_TRUE(paneTexts().isEmpty());
    ASSERT_TRUE(window().showAndWait());
    ASSERT_TRUE(pump([&] { return paneTexts() == QStringList{"hidden"}; }));
}

TEST_F(SubImageLabelTest, TypesWithoutAPictureHaveLabelsToo)
{
    for (const int nType : {7, int(VIDEO_DISPLAY_DXGL)}) {
        submitWithOverlays(ofType(nType), {text(nType == 7 ? "seven" : "six", 10, 20, 210, 60)});
        picture();
        EXPECT_EQ(paneTexts(), QStringList{nType == 7 ? "seven" : "six"});
    }
}

TEST_F(SubImageLabelTest, ClearingBlanksTheLabelsInBothModes)
{
    for (const int nReserve : {0, 1}) {
        ASSERT_EQ(setReserveLastFrame(handle(), nReserve), 0);
        submitTexts({text("one", 10, 20, 210, 60)});
        picture();
        ASSERT_EQ(paneTexts(), QStringList{"one"});
        Xelt_ClearDraw(handle());
        EXPECT_TRUE(paneTexts().isEmpty()) << "at once on the GUI thread";
        submitTexts({text("two", 10, 20, 210, 60)});
        picture();
        ASSERT_EQ(paneTexts(), QStringList{"two"});
        std::thread([&] { Xelt_ClearDraw(handle()); }).join();
        EXPECT_EQ(paneTexts(), QStringList{"two"}) << "labels are the GUI thread's";
        drainEvents();
        EXPECT_TRUE(paneTexts().isEmpty());
    }
}

// A clear from a host thread must not blank what a later frame brought.
TEST_F(SubImageLabelTest, AFrameRightAfterAClearKeepsItsLabels)
{
    for (int nRound = 0; nRound < 10; ++nRound) {
        submitTexts({text("old", 10, 20, 210, 60)});
        drainEvents();
        std::thread([&] { Xelt_ClearDraw(handle()); }).join();
        submitTexts({text("new", 10, 20, 210, 60)});
        picture();
        drainEvents();
        ASSERT_TRUE(pump([&] { return paneTexts() == QStringList{"new"}; }));
        drainEvents();
        EXPECT_EQ(paneTexts(), QStringList{"new"});
    }
}

TEST_F(SubImageLabelTest, LabelsGoOnTheLabelParent)
{
    setLabelParent(&window());
    submitTexts({text("window", 10, 20, 210, 60)});
    picture();
    EXPECT_TRUE(paneTexts().isEmpty());
    EXPECT_EQ(texts(&window()), QStringList{"window"});
    window().release(handle());
    EXPECT_TRUE(texts(&window()).isEmpty()) << "they go with their pane";
}

// The window is being painted while its labels change; it must come to rest again.
TEST_F(SubImageLabelTest, ALabelParentIsNotPaintedForEver)
{
    setLabelParent(&window());
    for (const char *pText : {"first", "second"}) {
        submitTexts({text(pText, 10, 20, 210, 60)});
        drainEvents();
        ASSERT_TRUE(pump([&] { return texts(&window()) == QStringList{pText}; }));
        drainEvents();
        const int nPaints = window().paints(handle());
        drainEvents();
        drainEvents();
        EXPECT_LE(window().paints(handle()), nPaints + 1);
    }
}

TEST_F(SubImageLabelTest, ALabelParentThatIsGoneIsNotUsed)
{
    auto pParent = std::make_unique<QWidget>();
    pParent->resize(300, 200);
    setLabelParent(pParent.get());
    submitTexts({text("one", 10, 20, 210, 60)});
    picture();
    EXPECT_EQ(texts(pParent.get()), QStringList{"one"});
    pParent.reset();
    submitTexts({text("two", 10, 20, 210, 60)});
    picture();
    drainEvents();
    EXPECT_EQ(paneTexts(), QStringList{"two"}) << "the pane carries its labels itself again";
}

TEST_F(SubImageLabelTest, ManyLabelsAreRebuiltWithoutNewWidgets)
{
    std::vector<XeltDrawInfo> vecRecords;
    for (int i = 0; i < 50; ++i) {
        vecRecords.push_back(text(std::to_string(i).c_str(), 4 * i, 3 * i, 4 * i + 30, 3 * i + 20));
    }
    submitTexts(vecRecords);
    picture();
    EXPECT_EQ(paneTexts().size(), 48);
    const int nChildren = paneWidget(handle())->findChildren<QObject *>().size();
    for (int nRound = 0; nRound < 200; ++nRound) {
        for (XeltDrawInfo &record : vecRecords) {
            std::strcpy(record.aText, std::to_string(nRound).c_str());
        }
        submitTexts(vecRecords);
        picture();
    }
    EXPECT_EQ(paneTexts().count("199"), 48);
    EXPECT_EQ(paneWidget(handle())->findChildren<QObject *>().size(), nChildren);
}

// What stands on the screen of the X server: the label's attributes let the picture through between its
// letters.
TEST_F(SubImageLabelTest, TheLabelStandsOverThePictureOnTheScreen)
{
    const HostFrame frame = yv12Frame(solidPlanes(64, 64, 255, 128, 128));
    const QRect inside(24, 32, 190, 60);
    const QRect outside(20, 120, 200, 40);
    submitWithOverlays(frame, {text("#######", 20, 40, 220, 90)});
    ASSERT_TRUE(pump([&] {
        return count(screen(), {0, 255, 0}, inside) > 20 * pixelsOf(1);
    })) << "no text on the screen";
    EXPECT_GT(count(screen(), {255, 255, 255}, inside), pixelsOf(190 * 60) / 2);
    EXPECT_EQ(count(screen(), {255, 255, 255}, outside), pixelsOf(200 * 40));
    m_overlays.vecRecords.clear();
    submit(frame);
    EXPECT_TRUE(pump([&] {
        return count(screen(), {255, 255, 255}, inside) == pixelsOf(190 * 60);
    })) << "a blank label hides nothing";
}

} // namespace
} // namespace xelttest
