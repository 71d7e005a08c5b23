#include "CodecLookup.h"

#include "ImportTable.h"

#include <QTextCodec>

namespace xelttest {

namespace {

QTextCodec *codecForName(const QByteArray &name)
{
    return hidesCodec(name) ? nullptr : QTextCodec::codecForName(name);
}

} // namespace

// The test program's own look-ups go past it.
void interposeCodecLookup()
{
    replaceImport("XeltRender.dll", "_ZN10QTextCodec12codecForNameERK10QByteArray",
                  reinterpret_cast<void *>(&codecForName));
}

} // namespace xelttest
