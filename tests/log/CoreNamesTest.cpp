// The table of names, against a list written down apart from it.
#include "System.h"
#include "log/CLS_OmbrixApi.h"
#include "log/CoreLibraryEntries.h"

#include <gtest/gtest.h>

namespace {

const std::vector<std::string> k_vecNames = {
#define CALLED(name) #name,
#define OTHER(name) #name,
#include "CoreNames.inc"
#undef CALLED
#undef OTHER
};

TEST(CoreNames, AreComplete)
{
    ASSERT_EQ(k_vecNames.size(), 127U);
    ASSERT_EQ(corelib::kEntryNames.size(), k_vecNames.size());
    for (size_t i = 0; i < k_vecNames.size(); ++i) {
        EXPECT_EQ(corelib::kEntryNames[i], k_vecNames[i]) << "slot " << i;
    }
}

TEST(CoreNames, EntriesAreWhatTheLibraryExportsUnderThem)
{
    CLS_OmbrixApi &api = CLS_OmbrixApi::Instance();
    ASSERT_EQ(api.LoadCoreLibrary(), 0);
    ASSERT_NE(api.Module(), nullptr);
    size_t nResolved = 0;
    for (size_t i = 0; i < k_vecNames.size(); ++i) {
        void *pExported = xelttest::moduleSymbol(api.Module(), k_vecNames[i].c_str());
        EXPECT_EQ(reinterpret_cast<void *>(api.Entry(i)), pExported) << k_vecNames[i];
        EXPECT_EQ(api.FindFunction(k_vecNames[i].c_str()), api.Entry(i));
        nResolved += pExported != nullptr ? 1 : 0;
    }
    // The recording core library has the six functions that are called and no more.
    EXPECT_EQ(nResolved, 6U);
    EXPECT_EQ(api.FindFunction("no_such_function"), nullptr);
}

} // namespace
