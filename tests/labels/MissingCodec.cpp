#include "MissingCodec.h"

#include <QTextCodec>

#include <dlfcn.h>

#include <cstdlib>

namespace {

QByteArray &hiddenName()
{
    static QByteArray abName;
    return abName;
}

int g_nLookups = 0;

} // namespace

// The executable's definition comes before the one in Qt's library, for the library under test too.
QTextCodec *QTextCodec::codecForName(const QByteArray &name)
{
    using Lookup = QTextCodec *(*)(const QByteArray &);
    static const auto pfnLookup =
        reinterpret_cast<Lookup>(dlsym(RTLD_NEXT, "_ZN10QTextCodec12codecForNameERK10QByteArray"));
    if (pfnLookup == nullptr) {
        std::abort();
    }
    if (!hiddenName().isEmpty() && qstricmp(name.constData(), hiddenName().constData()) == 0) {
        ++g_nLookups;
        return nullptr;
    }
    return pfnLookup(name);
}

namespace xelttest {

MissingCodec::MissingCodec(const QByteArray &abName)
{
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
