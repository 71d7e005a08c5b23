#include "d3d11/D3DWarning.h"

#include "log/QtMessages.h"

#include <QString>

namespace d3d {

bool Failed(HRESULT hr, const char *pszTemplate, int nNumber)
{
    if (SUCCEEDED(hr)) {
        return false;
    }
    // A failure is negative, and base 16 shows it with the sixteen digits of a 64-bit number.
    const QString sText = QString::fromLatin1(pszTemplate)
                              .arg(nNumber)
                              .arg(static_cast<long>(hr), 0, 16, QLatin1Char(' '))
                              .arg(qt_error_string(hr));
    qtlog::Warning("%s", qUtf8Printable(sText));
    return true;
}

} // namespace d3d
