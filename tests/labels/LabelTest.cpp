#include "LabelTest.h"

#include <QElapsedTimer>
#include <QEvent>

#include <algorithm>
#include <cstring>

namespace xelttest {

XeltDrawInfo textRecord(const QByteArray &abText, const TextLook &look)
{
    XeltDrawInfo record = overlayRecord(DRAWINFO_TEXT, {{look.nLeft, look.nTop}, {look.nRight, look.nBottom}},
                                        look.nColor, look.nSize);
    const int nBytes = std::min<int>(abText.size(), XELT_DRAWINFO_TEXT_SIZE);
    std::memcpy(record.aText, abText.constData(), static_cast<size_t>(nBytes));
    record.nTextEncoding = look.nEncoding;
    return record;
}

XeltDrawInfo textRecordOfPoints(const QByteArray &abText, int nPointNum)
{
    XeltDrawInfo record = textRecord(abText);
    record.nPointNum = nPointNum;
    return record;
}

XeltDrawInfo lineRecord()
{
    return overlayRecord(DRAWINFO_POLYLINE, {{5, 5}, {50, 30}}, overlayColour(255, 255, 255), 2);
}

std::vector<XeltDrawInfo> numberedRecords(int nCount)
{
    std::vector<XeltDrawInfo> vecRecords;
    for (int i = 0; i < nCount; ++i) {
        vecRecords.push_back(textRecord('t' + QByteArray::number(i)));
    }
    return vecRecords;
}

std::vector<QLabel *> labelsOn(const QWidget *pParent)
{
    const auto list = pParent->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    return {list.rbegin(), list.rend()};
}

std::vector<QString> textsOn(const QWidget *pParent)
{
    std::vector<QString> vecTexts;
    for (const QLabel *pLabel : labelsOn(pParent)) {
        vecTexts.push_back(pLabel->text());
    }
    return vecTexts;
}

QLabel *labelWithText(const QWidget *pParent, const QString &strText)
{
    for (QLabel *pLabel : labelsOn(pParent)) {
        if (pLabel->text() == strText) {
            return pLabel;
        }
    }
    return nullptr;
}

int32_t setLabelParent(void *handle, QWidget *pParent)
{
    return Xelt_SetParam(handle, XELTCMD_SET_LABEL_PARENT, pParent, sizeof pParent);
}

bool EventCounter::eventFilter(QObject *pObject, QEvent *pEvent)
{
    m_nCount += std::count(m_vecTypes.begin(), m_vecTypes.end(), pEvent->type()) != 0 ? 1 : 0;
    return QObject::eventFilter(pObject, pEvent);
}

void LabelTest::SetUp()
{
    m_pWindow = std::make_unique<HostWindow>(QSize(320, 240), 1, Creator::CreateEx, GetParam());
    ASSERT_EQ(m_pWindow->panes().size(), 1U);
    ASSERT_NE(handle(), nullptr);
    ASSERT_EQ(setDrawInfoCallback(handle(), &OverlayHost::callback, &m_host), 0);
}

void LabelTest::TearDown()
{
    m_pWindow.reset();
}

void LabelTest::submit()
{
    ASSERT_EQ(show(handle(), m_frame), 0);
}

void LabelTest::rebuild(std::vector<XeltDrawInfo> vecRecords)
{
    m_host.vecRecords = std::move(vecRecords);
    const int nPaints = m_pWindow->paints(handle());
    submit();
    if (pane()->isVisible()) {
        ASSERT_TRUE(m_pWindow->waitForPaint(handle(), nPaints));
    }
    drainEvents();
}

bool LabelTest::comesToRest()
{
    QElapsedTimer quiet;
    quiet.start();
    int nPaints = m_pWindow->paints(handle());
    return pump([&] {
        if (m_pWindow->paints(handle()) != nPaints) {
            nPaints = m_pWindow->paints(handle());
            quiet.restart();
        }
        return quiet.hasExpired(300);
    });
}

std::string rendererName(const testing::TestParamInfo<int32_t> &info)
{
    return info.param == XELT_RENDERER_YUV ? "Yuv" : "SubImage";
}

} // namespace xelttest
