// Texts whose markup names something to load.
#pragma once

#include <QByteArray>

#include <vector>

namespace xelttest {

struct CorpusText
{
    QByteArray abText;
    int nEncoding;
};

// Each names the target, a file's path or an address of at most 55 bytes, and is markup to Qt.
std::vector<CorpusText> hostileTexts(const QByteArray &abTarget);

} // namespace xelttest
