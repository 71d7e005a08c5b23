// Hides one text codec from the library under test, as a Qt built or shipped without it would.
#pragma once

#include <QByteArray>

namespace xelttest {

// While it lives, looking the codec up by this name finds none. One at a time; GUI thread.
class MissingCodec
{
public:
    explicit MissingCodec(const QByteArray &abName);
    ~MissingCodec();
    MissingCodec(const MissingCodec &) = delete;
    MissingCodec &operator=(const MissingCodec &) = delete;

    // How often it was looked up in vain.
    static int lookups();
};

} // namespace xelttest
