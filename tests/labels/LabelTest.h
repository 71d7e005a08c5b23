// A pane whose host answers with text records, and the labels that come of them.
#pragma once

#include "Frames.h"
#include "HostWindow.h"
#include "OverlayHost.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QEvent>
#include <QLabel>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace xelttest {

constexpr int k_nLabelLimit = 48;

struct TextLook
{
    int nLeft = 10;
    int nTop = 20;
    int nRight = 210;
    int nBottom = 60;
    uint32_t nColor = overlayColour(0, 255, 0);
    int nSize = 12;
    int nEncoding = DRAWINFO_ENCODING_UTF8;
};

// A text record. Text of 136 bytes or more fills the field without a terminator.
XeltDrawInfo textRecord(const QByteArray &abText, const TextLook &look = {});
// The same, with another number of points.
XeltDrawInfo textRecordOfPoints(const QByteArray &abText, int nPointNum);
XeltDrawInfo lineRecord();
// "t0", "t1", ... in list order.
std::vector<XeltDrawInfo> numberedRecords(int nCount);

// The labels right under a widget, the one made last first turned round: each is put below its siblings when
// it is made, so that they come out in the order in which they were made.
std::vector<QLabel *> labelsOn(const QWidget *pParent);
std::vector<QString> textsOn(const QWidget *pParent);
// The label with the text; null when there is none.
QLabel *labelWithText(const QWidget *pParent, const QString &strText);

int32_t setLabelParent(void *handle, QWidget *pParent);

// Counts events of the widgets that it watches.
class EventCounter : public QObject
{
public:
    explicit EventCounter(std::vector<QEvent::Type> vecTypes) : m_vecTypes(std::move(vecTypes)) {}

    void watch(QObject *pObject) { pObject->installEventFilter(this); }
    int count() const { return m_nCount; }
    void reset() { m_nCount = 0; }

protected:
    bool eventFilter(QObject *pObject, QEvent *pEvent) override;

private:
    std::vector<QEvent::Type> m_vecTypes;
    int m_nCount = 0;
};

// Runs for both renderers: the first rebuilds its labels when it takes a frame, the other when it paints.
class LabelTest : public testing::TestWithParam<int32_t>
{
protected:
    void SetUp() override;
    void TearDown() override;

    void *handle() const { return m_pWindow->pane(); }
    QWidget *pane() const { return paneWidget(handle()); }

    // Delivers the records with a frame and waits until the labels follow.
    void rebuild(std::vector<XeltDrawInfo> vecRecords);
    // Submits a frame on this thread.
    void submit();
    // Whether the pane gets no paint for a while.
    bool comesToRest();

    OverlayHost m_host;
    HostFrame m_frame = yv12Frame(solidPlanes(16, 16, 90, 128, 128));
    std::unique_ptr<HostWindow> m_pWindow;
};

std::string rendererName(const testing::TestParamInfo<int32_t> &info);

} // namespace xelttest

// NOLINTNEXTLINE(bugprone-macro-parentheses)
#define XELT_FOR_BOTH_RENDERERS(suite)                                                                \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::Values(XELT_RENDERER_YUV, XELT_RENDERER_YUV_SUBIMAGE), \
                             xelttest::rendererName)
