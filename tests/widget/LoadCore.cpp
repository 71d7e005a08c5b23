// Binds the recording core library before the first test, as a creation through the exports would.
#include "log/CLS_OmbrixApi.h"

#include <gtest/gtest.h>

namespace {

class LoadCore : public testing::Environment
{
public:
    void SetUp() override { ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0); }
};

const testing::Environment *const k_pLoadCore = testing::AddGlobalTestEnvironment(new LoadCore);

} // namespace
