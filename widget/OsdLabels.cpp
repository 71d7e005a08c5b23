// The text labels of CLS_ShaderBase. GUI thread.
#include "widget/CLS_ShaderBase.h"

#include <QDebug>
#include <QFont>
#include <QLabel>
#include <QMutexLocker>
#include <QTextCodec>
#include <QTextDocument>
#include <algorithm>
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

QString StyleSheetFor(uint32_t nColor)
{
    return QStringLiteral("color: rgb(%1, %2, %3);background-color: rgb(0, 0, 0);")
        .arg(nColor & 0xFFu)
        .arg((nColor >> 8) & 0xFFu)
        .arg((nColor >> 16) & 0xFFu);
}

} // namespace

void CLS_ShaderBase::AddLabel()
{
    const int nSlots = ShowLabels();
    const bool blShown = nSlots != 0;
    // The repaint may reach this widget's own painting, which takes the mutex that ShowLabels has released.
    if (m_pLabelParent != nullptr && (m_blLabelsShown != blShown || blShown)) {
        m_pLabelParent->repaint();
    }
    m_blLabelsShown = blShown;
}

int CLS_ShaderBase::ShowLabels()
{
    const QMutexLocker locker(&m_mutexDrawInfo);
    ClearLabels();
    int nSlot = 0;
    for (int i = m_vecDrawInfo.size() - 1; i >= 0; --i) {
        const XeltDrawInfo &record = qAsConst(m_vecDrawInfo)[i];
        if (record.nType != DRAWINFO_TEXT || record.aText[0] == '\0') {
            continue;
        }
        // A record that cannot be shown uses up its slot all the same.
        if (nSlot < kLabelCount && record.nPointNum >= 2) {
            ShowLabel(nSlot, m_vecDrawInfo[i]);
        }
        ++nSlot;
    }
    return nSlot;
}

void CLS_ShaderBase::ShowLabel(int nSlot, XeltDrawInfo &record)
{
    if (m_pLabels[nSlot].isNull()) {
        m_pLabels[nSlot] = CreateLabel();
    }
    QLabel *pLabel = m_pLabels[nSlot];
    const XeltPoint &topLeft = record.aPoints[0];
    XeltPoint &bottomRight = record.aPoints[1];
    if (topLeft.y < 0) {
        // The stored record changes too, so that a later rebuild does not move the box again.
        bottomRight.y = geometry::TruncateToInt(static_cast<double>(bottomRight.y) - topLeft.y);
        record.aPoints[0].y = 0;
    }
    int nFontSize = record.nSize;
    if (nFontSize < 1) {
        nFontSize = kDefaultFontSize;
        qDebug("CLS_ShaderBase::AddLabel Error:iFontSize <= 0");
    }
    pLabel->setStyleSheet(StyleSheetFor(record.nColor));
    QFont font;
    font.setPointSize(nFontSize);
    pLabel->setFont(font);
    const auto toInt = [](int64_t n) { return geometry::TruncateToInt(static_cast<double>(n)); };
    pLabel->setGeometry(topLeft.x, toInt(int64_t{topLeft.y} - kLabelMargin),
                        toInt(int64_t{bottomRight.x} - topLeft.x),
                        toInt(int64_t{bottomRight.y} - topLeft.y + 2 * kLabelMargin));
    QString strText;
    if (Decode(record, strText)) {
        // Markup could name files and addresses; a host's text opens neither.
        pLabel->setTextFormat(Qt::mightBeRichText(strText) ? Qt::PlainText : Qt::AutoText);
        pLabel->setText(strText);
    }
}

QLabel *CLS_ShaderBase::CreateLabel()
{
    auto *pLabel = new QLabel(m_pLabelParent != nullptr ? m_pLabelParent : this);
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
    for (const QPointer<QLabel> &pLabel : m_pLabels) {
        if (!pLabel.isNull()) {
            pLabel->clear();
        }
    }
}

void CLS_ShaderBase::DeleteLabels()
{
    for (QPointer<QLabel> &pLabel : m_pLabels) {
        delete pLabel;
        pLabel.clear();
    }
}
