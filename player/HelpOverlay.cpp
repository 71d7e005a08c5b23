#include "HelpOverlay.h"

namespace {

struct Entry
{
    const char *pszKey;
    const char *pszEffect;
};

const Entry kEntries[] = {
    {"1 to 9, 0", "choose a pane for the keys below, or all"},
    {"R, Shift+R", "turn a quarter on, or back"},
    {"M", "mirror: left-right, upside down, none"},
    {"A", "keep the picture's proportions, or fill"},
    {"drag", "magnify what is marked"},
    {"double click, Z", "the whole picture again"},
    {"O", "overlay on and off"},
    {"S", "stop and turn black; go on"},
    {"K", "stop and keep the picture; go on"},
    {"F", "full screen and back"},
    {"P", "screenshot"},
    {"H", "this list on and off"},
    {"Q, Esc", "quit"},
};

QString table()
{
    QString strRows;
    for (const Entry &entry : kEntries) {
        strRows += QStringLiteral("<tr><td><b>%1</b></td><td style='padding-left:16px'>%2</td></tr>")
                       .arg(QLatin1String(entry.pszKey), QLatin1String(entry.pszEffect));
    }
    return QStringLiteral("<table>%1</table>").arg(strRows);
}

} // namespace

HelpOverlay::HelpOverlay(QWidget *pParent) : QLabel(pParent)
{
    setTextFormat(Qt::RichText);
    setText(table());
    setStyleSheet(QStringLiteral("color: white; background-color: rgba(0, 0, 0, 190); padding: 12px;"
                                 "border-radius: 6px;"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    adjustSize();
    move(24, 24);
    hide();
}

void HelpOverlay::toggle()
{
    setVisible(!isVisible());
    raise();
}
