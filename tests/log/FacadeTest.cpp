// The six operations of the facade: levels, formatting, length and order.
#include "CoreLog.h"
#include "ErrorRecord.h"
#include "GuardedBytes.h"
#include "log/CLS_OmbrixApi.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

class Facade : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(CoreLog::instance().isPresent());
        ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0);
        CoreLog::instance().reset();
    }

    CLS_OmbrixApi &m_api = CLS_OmbrixApi::Instance();
    CoreLog &m_log = CoreLog::instance();
};

struct Levels
{
    int nFirst;
    int nSecond;
    bool blPasses;
};

class FacadeLevels : public Facade, public testing::WithParamInterface<Levels>
{
};

TEST_P(FacadeLevels, GateMessagesAndPositionLines)
{
    const Levels &levels = GetParam();
    m_log.setLevels(levels.nFirst, levels.nSecond);
    EXPECT_EQ(m_api.inner_sdk_log_get_level(200), levels.blPasses);
    m_log.clear();
    m_api.inner_sdk_log_msg("message %d", 1);
    m_api.inner_sdk_log_buf_msg("position %d", 2);
    if (levels.blPasses) {
        EXPECT_THAT(m_log.records(), ElementsAre(CoreLogRecord{CORELOG_MSG, "message 1", 0},
                                                 CoreLogRecord{CORELOG_BUF_MSG, "position 2", 0}));
    } else {
        EXPECT_THAT(m_log.records(), IsEmpty());
    }
    EXPECT_EQ(m_log.calls(CORELOG_GET_LEVEL), 2U);
}

TEST_P(FacadeLevels, NeverGateTheRestOfAnErrorRecord)
{
    const Levels &levels = GetParam();
    m_log.setLevels(levels.nFirst, levels.nSecond);
    XELT_REPORT_ERROR("Source", "Function", "text %d", 3);
    if (levels.blPasses) {
        EXPECT_EQ(m_log.records().size(), 4U);
        EXPECT_TRUE(isErrorRecord(m_log.records(), 0, "Source", "Function", "text 3"));
    } else {
        EXPECT_THAT(m_log.records(), ElementsAre(CoreLogRecord{CORELOG_BUF_LOCK, "", 0},
                                                 CoreLogRecord{CORELOG_BUF_DATE, "", 0},
                                                 CoreLogRecord{CORELOG_ERR_MSG_UNLOCK, "text 3", 0}));
    }
    EXPECT_EQ(m_log.calls(CORELOG_GET_LEVEL), 1U);
}

INSTANTIATE_TEST_SUITE_P(Combinations, FacadeLevels,
                         testing::Values(Levels{0, 0, false}, Levels{0, 200, true}, Levels{200, 0, true},
                                         Levels{199, 199, false}, Levels{200, 200, true},
                                         Levels{199, 201, true}, Levels{INT32_MAX, 0, true},
                                         Levels{INT32_MIN, -1, false}),
                         [](const auto &testCase) { return "Case" + std::to_string(testCase.index); });

TEST_F(Facade, LevelZeroIsOffWhateverTheThreshold)
{
    m_log.setLevels(0, 0);
    for (const int32_t nThreshold : {INT32_MIN, -1, 0, 1}) {
        EXPECT_FALSE(m_api.inner_sdk_log_get_level(nThreshold)) << nThreshold;
    }
    m_log.setLevels(-5, 0);
    EXPECT_TRUE(m_api.inner_sdk_log_get_level(-5));
    EXPECT_FALSE(m_api.inner_sdk_log_get_level(-4));
    m_log.setLevels(0, 7);
    EXPECT_TRUE(m_api.inner_sdk_log_get_level(7));
    EXPECT_FALSE(m_api.inner_sdk_log_get_level(8));
}

TEST_F(Facade, ThresholdOfMessagesIs200)
{
    EXPECT_EQ(CLS_OmbrixApi::kLogLevel, 200);
}

TEST_F(Facade, FilteredMessagesAreNotFormatted)
{
    // Formatting would read an address that cannot be read.
    const GuardedBytes forbidden(0);
    const auto *pszForbidden = reinterpret_cast<const char *>(forbidden.data());
    m_log.setLevels(0, 0);
    m_api.inner_sdk_log_msg("%s", pszForbidden);
    m_api.inner_sdk_log_buf_msg("%s", pszForbidden);
    EXPECT_THAT(m_log.records(), IsEmpty());
}

TEST_F(Facade, LongMessagesAreCutSilently)
{
    for (const size_t nLength : {0U, 1U, 4093U, 4094U, 4095U, 4096U, 5000U, 100000U}) {
        SCOPED_TRACE(nLength);
        std::string sText(nLength, 'x');
        for (size_t i = 0; i < nLength; ++i) {
            sText[i] = static_cast<char>('a' + i % 23);
        }
        const std::string sDelivered = sText.substr(0, 4094);
        m_log.clear();
        m_api.inner_sdk_log_msg("%s", sText.c_str());
        m_api.inner_sdk_log_buf_msg("%s", sText.c_str());
        m_api.inner_sdk_log_buf_lock();
        m_api.inner_sdk_err_buf_msg_unlock("%s", sText.c_str());
        EXPECT_THAT(m_log.records(), ElementsAre(CoreLogRecord{CORELOG_MSG, sDelivered, 0},
                                                 CoreLogRecord{CORELOG_BUF_MSG, sDelivered, 0},
                                                 CoreLogRecord{CORELOG_BUF_LOCK, "", 0},
                                                 CoreLogRecord{CORELOG_ERR_MSG_UNLOCK, sDelivered, 0}));
    }
}

TEST_F(Facade, FormatsItsArguments)
{
    m_api.inner_sdk_log_msg("%s %d %.2f %% %5u|", "text", -7, 0.25, 42U);
    EXPECT_THAT(m_log.messages(), ElementsAre("text -7 0.25 %    42|"));
}

TEST_F(Facade, ResultsAreTheCoreLibrarys)
{
    EXPECT_EQ(m_api.inner_sdk_log_msg("a"), 0);
    EXPECT_EQ(m_api.inner_sdk_log_buf_lock(), 0);
    EXPECT_EQ(m_api.inner_sdk_log_buf_date(), 0);
    EXPECT_EQ(m_api.inner_sdk_log_buf_msg("b"), 0);
    EXPECT_EQ(m_api.inner_sdk_err_buf_msg_unlock("c"), 0);
    EXPECT_THAT(m_log.records(),
                ElementsAre(CoreLogRecord{CORELOG_MSG, "a", 0}, CoreLogRecord{CORELOG_BUF_LOCK, "", 0},
                            CoreLogRecord{CORELOG_BUF_DATE, "", 0}, CoreLogRecord{CORELOG_BUF_MSG, "b", 0},
                            CoreLogRecord{CORELOG_ERR_MSG_UNLOCK, "c", 0}));
}

TEST_F(Facade, ErrorRecordsOfSeveralThreadsDoNotMix)
{
    constexpr int k_nThreads = 4;
    constexpr int k_nRecords = 50;
    std::vector<std::thread> vecThreads;
    for (int i = 0; i < k_nThreads; ++i) {
        vecThreads.emplace_back([i] {
            for (int n = 0; n < k_nRecords; ++n) {
                XELT_REPORT_ERROR("Source", "Function", "thread %d", i);
            }
        });
    }
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
    const auto vecRecords = m_log.records();
    ASSERT_EQ(vecRecords.size(), 4U * k_nThreads * k_nRecords);
    for (size_t i = 0; i < vecRecords.size(); i += 4) {
        EXPECT_TRUE(isErrorRecord(vecRecords, i, "Source", "Function", vecRecords[i + 3].sText));
        EXPECT_EQ(vecRecords[i].nThread, vecRecords[i + 3].nThread);
    }
}

TEST_F(Facade, RepeatedLoadsKeepTheModule)
{
    const platform::ModuleHandle hModule = m_api.Module();
    EXPECT_EQ(m_api.LoadCoreLibrary(), 0);
    EXPECT_EQ(m_api.Module(), hModule);
    EXPECT_EQ(&CLS_OmbrixApi::Instance(), &m_api);
}

} // namespace
