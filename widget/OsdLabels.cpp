// The text labels of CLS_ShaderBase. GUI thread.
#include "log/QtMessages.h"
#include "widget/CLS_ShaderBase.h"
#include "widget/LabelText.h"

#include <QFont>
#include <QLabel>
#include <QMutexLocker>
#include <QTextCodec>
#include <QThread>
#include <algorithm>
#include <bitset>
#include <cstring>
#include <utility>

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

// A box that begins above the label parent is moved down to its edge.
void MoveTopToZero(XeltDrawInfo &record)
{
    record.aPoints[1].y = Saturated(int64_t{record.aPoints[1].y} - record.aPoints[0].y);
    record.aPoints[0].y = 0;
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

// While labels are rebuilt, events run code of the host's, which may even end the widget.
class CLS_ShaderBase::RebuildScope
{
public:
    explicit RebuildScope(CLS_ShaderBase &widget) : m_pWidget(&widget) { widget.m_blRebuildingLabels = true; }
    ~RebuildScope()
    {
        if (!m_pWidget.isNull()) {
            m_pWidget->m_blRebuildingLabels = false;
        }
    }
    RebuildScope(const RebuildScope &) = delete;
    RebuildScope &operator=(const RebuildScope &) = delete;

    bool isWidgetGone() const { return m_pWidget.isNull(); }

private:
    const QPointer<CLS_ShaderBase> m_pWidget;
};

void CLS_ShaderBase::AddLabel()
{
    RebuildLabels(ParentPaint::AtOnce);
}

void CLS_ShaderBase::AddLabelWhilePainting()
{
    RebuildLabels(ParentPaint::Later);
}

void CLS_ShaderBase::RebuildLabels(ParentPaint paint)
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (m_blRebuildingLabels) {
        // Out of an event of the rebuild that is under way, which goes on with older records.
        QMetaObject::invokeMethod(
            this, [this, paint] { RebuildLabels(paint); }, Qt::QueuedConnection);
        return;
    }
    const RebuildScope scope(*this);
    const LabelRebuild rebuild = ShowLabels(scope);
    if (scope.isWidgetGone()) {
        return;
    }
    const bool blShownBefore = std::exchange(m_blLabelsShown, rebuild.blShown);
    QWidget *pLabelParent = m_pLabelParent;
    // A label parent that is being painted, as those above this widget are in its paint, is told later; in a paint
    // only of something new, or it would never end.
    const bool blConcerned =
        paint == ParentPaint::AtOnce ? blShownBefore || rebuild.blShown : rebuild.blChanged;
    if (pLabelParent == nullptr || !blConcerned) {
        return;
    }
    if (paint == ParentPaint::Later || pLabelParent->testAttribute(Qt::WA_WState_InPaintEvent)) {
        pLabelParent->update();
    } else {
        pLabelParent->repaint();
    }
}

std::vector<CLS_ShaderBase::SlotRecord> CLS_ShaderBase::TakeTexts(bool &blShown)
{
    const QMutexLocker locker(&m_mutexDrawInfo);
    std::vector<SlotRecord> vecTexts;
    size_t nSlot = 0;
    for (int i = m_vecDrawInfo.size() - 1; i >= 0; --i) {
        const XeltDrawInfo &record = qAsConst(m_vecDrawInfo)[i];
        if (record.nType != DRAWINFO_TEXT || record.aText[0] == '\0') {
            continue;
        }
        // A record that cannot be shown uses up its slot all the same.
        if (nSlot < kLabelCount && record.nPointNum >= 2) {
            // In the list, so that a later rebuild does not move it again.
            if (record.aPoints[0].y < 0) {
                MoveTopToZero(m_vecDrawInfo[i]);
            }
            vecTexts.push_back({nSlot, qAsConst(m_vecDrawInfo)[i]});
        }
        ++nSlot;
    }
    blShown = nSlot != 0;
    return vecTexts;
}

CLS_ShaderBase::LabelRebuild CLS_ShaderBase::ShowLabels(const RebuildScope &scope)
{
    LabelRebuild rebuild;
    std::bitset<kLabelCount> used;
    for (const SlotRecord &text : TakeTexts(rebuild.blShown)) {
        used.set(text.nSlot);
        if (text.record.nSize < 1 && !scope.isWidgetGone()) {
            qtlog::Debug("CLS_ShaderBase::AddLabel Error:iFontSize <= 0");
        }
        rebuild.blChanged |= !scope.isWidgetGone() && ShowLabel(text.nSlot, text.record);
    }
    for (size_t nSlot = 0; nSlot < kLabelCount && !scope.isWidgetGone(); ++nSlot) {
        rebuild.blChanged |= !used.test(nSlot) && BlankLabel(nSlot);
    }
    return rebuild;
}

bool CLS_ShaderBase::ShowLabel(size_t nSlot, const XeltDrawInfo &record)
{
    XeltDrawInfo &shown = m_aLabelRecords[nSlot];
    const bool blNew = m_pLabels[nSlot].isNull();
    if (!blNew && IsSame(shown, record)) {
        return false; // nothing new: setting it again would cost a layout
    }
    shown = record;
    if (blNew) {
        m_pLabels[nSlot] = NewLabel();
    }
    const QPointer<QLabel> pLabel(m_pLabels[nSlot].data());
    if (blNew) {
        pLabel->show();
    }
    if (blNew && !pLabel.isNull()) {
        pLabel->lower();
    }
    if (!pLabel.isNull()) {
        ApplyRecord(*pLabel, record);
    }
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

QLabel *CLS_ShaderBase::NewLabel()
{
    QWidget *pLabelParent = m_pLabelParent;
    auto *pLabel = new QLabel(pLabelParent != nullptr ? pLabelParent : this);
    pLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    pLabel->setAttribute(Qt::WA_TranslucentBackground);
    // The second call replaces the first: centred vertically only, deliberately.
    pLabel->setAlignment(Qt::AlignLeft);
    pLabel->setAlignment(Qt::AlignVCenter);
    pLabel->setTextFormat(Qt::AutoText);
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
