#include "windows/VirtualTable.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>

namespace xelttest {

namespace {

// What lies before a table tells the object's type. How long one is nobody knows; no interface here has as
// many methods.
constexpr size_t k_nBefore = 2;
constexpr size_t k_nCopied = 160;
using Table = std::array<void *, k_nBefore + k_nCopied>;

// Never destroyed: the objects may outlive everything of the test's.
struct Copies
{
    std::mutex mutex;
    std::map<void **, std::unique_ptr<Table>> copyOf;

    static Copies &instance()
    {
        static Copies &copies = *new Copies;
        return copies;
    }
    bool isCopy(void **ppTable) const
    {
        return std::any_of(copyOf.begin(), copyOf.end(), [ppTable](const auto &entry) {
            return entry.second->data() + k_nBefore == ppTable;
        });
    }
};

} // namespace

void replaceMethod(void *pObject, size_t nSlot, void *pReplacement,
                   const std::function<void(void *)> &keepReal)
{
    Copies &copies = Copies::instance();
    const std::lock_guard<std::mutex> lock(copies.mutex);
    void **&ppTable = *static_cast<void ***>(pObject);
    if (!copies.isCopy(ppTable)) {
        std::unique_ptr<Table> &pCopy = copies.copyOf[ppTable];
        if (pCopy == nullptr) {
            pCopy = std::make_unique<Table>();
            std::copy_n(ppTable - k_nBefore, pCopy->size(), pCopy->begin());
        }
        ppTable = pCopy->data() + k_nBefore;
    }
    if (ppTable[nSlot] != pReplacement) {
        keepReal(ppTable[nSlot]);
        ppTable[nSlot] = pReplacement;
    }
}

} // namespace xelttest
