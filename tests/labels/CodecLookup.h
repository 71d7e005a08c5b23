// How MissingCodec comes between the library under test and Qt's look-up of text codecs.
#pragma once

#include <QByteArray>

namespace xelttest {

// Whether a codec that is looked up is to be missing; counts those.
bool hidesCodec(const QByteArray &abName);
// Has an effect once, and needs none where the program's definition goes before Qt's.
void interposeCodecLookup();

} // namespace xelttest
