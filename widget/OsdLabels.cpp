// The text labels of CLS_ShaderBase. GUI thread.
#include "widget/CLS_ShaderBase.h"
#include "widget/LabelText.h"

#include <QDebug>
#include <QFont>
#include <QLabel>
#include <QMutexLocker>
#include <QTextCodec>
#include <QThread>
#include <algorithm>
#include <bitset>
#include <cstring>

namespace {

constexpr int kLabelMargin = 11; // pixels above and below the host's box
constexpr int kDefaultFontSize = 50;

QByteArray TextOf(const XeltDrawInfo &record)
{
    const char *pEnd = std::find(record.aText, record.aText + sizeof(record.aText), '\0');
    return QByteArray(record.aText, static_cast<int>(pEnd - record.aText));
}

// False when the text's encoding is not available here.
bool Decode(const XeltDrawInfo &record, QString &strText)
{
    const QByteArray abText = TextOf(record);
    if (record.nTextEncoding == DRAWINFO_ENCODING_UTF8) {
        strText = QString::fromUtf8(abText);
    } else if (record.nTextEncoding == DRAWINFO_ENCODING_GBK) {
        const QTextCodec *pCodec = QTextCodec::codecForName("GBK");
        if (pCodec == nullptr) {
            return false;
        }
        strText = pCodec->toUnicode(abText);
    } else {
        strText = QString::fromLocal8Bit(abText);
    }
    return true;
}

int32_t Saturated(int64_t nValue)
{
    return geometry::TruncateToInt(static_cast<double>(nValue));
}

// A coordinate that Qt can place a widget at; anything beyond is far outside every screen.
int Placeable(int64_t nValue)
{
    return static_cast<int>(std::clamp<int64_t>(nValue, -QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

QString StyleSheetFor(uint32_t nColor)
{
    return QStringLiteral("color: rgb(%1, %2, %3);background-color: rgb(0, 0, 0);")
        .arg(nColor & 0xFFu)
        .arg((nColor >> 8) & 0xFFu)
        .arg((nColor >> 16) & 0xFFu);
}

bool IsSame(const XeltDrawInfo &one, const XeltDrawInfo &other)
{
    // By their bytes, so that an opacity that is no number equals itself.
    const void *pOne = &one;
    const void *pOther = &other;
    return std::memcmp(pOne, pOther, sizeof(one)) == 0;
}

void ApplyRecord(QLabel &label, const XeltDrawInfo &record)
{
    const QString strStyleSheet = StyleSheetFor(record.nColor);
    if (label.styleSheet() != strStyleSheet) {
        label.setStyleSheet(strStyleSheet); // dear even when nothing changes
    }
    QFont font;
    font.setPointSize(record.nSize >= 1 ? record.nSize : kDefaultFontSize);
    label.setFont(font);
    const XeltPoint &topLeft = record.aPoints[0];
    const XeltPoint &bottomRight = record.aPoints[1];
    label.setGeometry(Placeable(topLeft.x), Placeable(int64_t{topLeft.y} - kLabelMargin),
                      Placeable(int64_t{bottomRight.x} - topLeft.x),
                      Placeable(int64_t{bottomRight.y} - topLeft.y + 2 * int64_t{kLabelMargin}));
    QString strText;
    if (!Decode(record, strText)) {
        label.clear();
        return;
    }
    const Qt::TextFormat format = labels::FormatFor(strText);
    if (label.textFormat() != format) {
        label.clear(); // or the text before would be read in the new format
        label.setTextFormat(format);
    }
    label.setText(strText);
}

} // namespace

void CLS_ShaderBase::AddLabel()
{
    const LabelRebuild rebuild = ShowLabels();
    // The repaint may reach this widget's own painting, which takes the mutex that ShowLabels has released.
    QWidget *pLabelParent = m_pLabelParent;
    if (pLabelParent != nullptr && (m_blLabelsShown || rebuild.blShown)) {
        pLabelParent->repaint();
    }
    m_blLabelsShown = rebuild.blShown;
}

void CLS_ShaderBase::AddLabelWhilePainting()
{
    const LabelRebuild rebuild = ShowLabels();
    // A label parent above this widget is being painted now, and painting it again leads back here: it is
    // told later, and only of something new.
    QWidget *pLabelParent = m_pLabelParent;
    if (pLabelParent != nullptr && rebuild.blChanged) {
        pLabelParent->update();
    }
    m_blLabelsShown = rebuild.blShown;
}

CLS_ShaderBase::LabelRebuild CLS_ShaderBase::ShowLabels()
{
    Q_ASSERT(QThread::currentThread() == thread());
    const QMutexLocker locker(&m_mutexDrawInfo);
    LabelRebuild rebuild;
    std::bitset<kLabelCount> used;
    size_t nSlot = 0;
    for (int i = m_vecDrawInfo.size() - 1; i >= 0; --i) {
        const XeltDrawInfo &record = qAsConst(m_vecDrawInfo)[i];
        if (record.nType != DRAWINFO_TEXT || record.aText[0] == '\0') {
            continue;
        }
        rebuild.blShown = true;
        // A record that cannot be shown uses up its slot all the same.
        if (nSlot < kLabelCount && record.nPointNum >= 2) {
            used.set(nSlot);
            rebuild.blChanged |= ShowLabel(nSlot, m_vecDrawInfo[i]);
        }
        ++nSlot;
    }
    for (nSlot = 0; nSlot < kLabelCount; ++nSlot) {
        rebuild.blChanged |= !used.test(nSlot) && BlankLabel(nSlot);
    }
    return rebuild;
}

bool CLS_ShaderBase::ShowLabel(size_t nSlot, XeltDrawInfo &record)
{
    if (record.aPoints[0].y < 0) {
        // The stored record changes too, so that a later rebuild does not move the box again.
        record.aPoints[1].y = Saturated(int64_t{record.aPoints[1].y} - record.aPoints[0].y);
        record.aPoints[0].y = 0;
    }
    if (record.nSize < 1) {
        qDebug("CLS_ShaderBase::AddLabel Error:iFontSize <= 0");
    }
    XeltDrawInfo &shown = m_aLabelRecords[nSlot];
    QPointer<QLabel> &pLabel = m_pLabels[nSlot];
    if (!pLabel.isNull() && IsSame(shown, record)) {
        return false; // nothing new: setting it again would cost a layout
    }
    shown = record;
    if (pLabel.isNull()) {
        pLabel = CreateLabel();
    }
    ApplyRecord(*pLabel, record);
    return true;
}

bool CLS_ShaderBase::BlankLabel(size_t nSlot)
{
    const bool blHadText = m_aLabelRecords[nSlot].nType == DRAWINFO_TEXT;
    m_aLabelRecords[nSlot] = XeltDrawInfo();
    QLabel *pLabel = m_pLabels[nSlot];
    // Clearing a blank label would cost a layout of its parent, and a paint.
    if (pLabel != nullptr && !pLabel->text().isEmpty()) {
        pLabel->clear();
    }
    return blHadText;
}

QLabel *CLS_ShaderBase::CreateLabel()
{
    QWidget *pLabelParent = m_pLabelParent;
    auto *pLabel = new QLabel(pLabelParent != nullptr ? pLabelParent : this);
    pLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    pLabel->setAttribute(Qt::WA_TranslucentBackground);
    // The second call replaces the first: centred vertically only, deliberately.
    pLabel->setAlignment(Qt::AlignLeft);
    pLabel->setAlignment(Qt::AlignVCenter);
    pLabel->setTextFormat(Qt::AutoText);
    pLabel->show();
    pLabel->lower();
    return pLabel;
}

void CLS_ShaderBase::ClearLabels()
{
    Q_ASSERT(QThread::currentThread() == thread());
    for (size_t nSlot = 0; nSlot < kLabelCount; ++nSlot) {
        BlankLabel(nSlot);
    }
}

void CLS_ShaderBase::DeleteLabels()
{
    Q_ASSERT(QThread::currentThread() == thread());
    for (size_t nSlot = 0; nSlot < kLabelCount; ++nSlot) {
        delete m_pLabels[nSlot];
        m_pLabels[nSlot].clear();
        m_aLabelRecords[nSlot] = XeltDrawInfo();
    }
}
