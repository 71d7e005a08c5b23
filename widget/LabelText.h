// Whether a label may read its text as markup. Pure functions of the text.
#pragma once

#include <QString>

namespace labels {

// Whether Qt, reading the text as markup, could come to load what it names: a file, a resource, an address. True
// for many a text that names nothing.
bool NamesSomethingToLoad(const QString &strText);

// Whether the text may give sizes that Qt spends minutes on.
bool CouldTakeForever(const QString &strText);

// The format in which a label shows the text: as Qt finds out for itself, unless the text is better not followed.
Qt::TextFormat FormatFor(const QString &strText);

} // namespace labels
