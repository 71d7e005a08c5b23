#include "MissingCodec.h"

#include "CodecLookup.h"

namespace xelttest {

namespace {

QByteArray &hiddenName()
{
    static QByteArray abName;
    return abName;
}

int g_nLookups = 0;

} // namespace

bool hidesCodec(const QByteArray &abName)
{
    const bool blHidden =
        !hiddenName().isEmpty() && qstricmp(abName.constData(), hiddenName().constData()) == 0;
    g_nLookups += blHidden ? 1 : 0;
    return blHidden;
}

MissingCodec::MissingCodec(const QByteArray &abName)
{
    interposeCodecLookup();
    hiddenName() = abName;
    g_nLookups = 0;
}

MissingCodec::~MissingCodec()
{
    hiddenName().clear();
}

int MissingCodec::lookups()
{
    return g_nLookups;
}

} // namespace xelttest
