// Creation by layout and by type code, and what it logs.
#include "AllocationTrap.h"
#include "CoreLog.h"
#include "ErrorRecord.h"
#include "Frames.h"
#include "HostWindow.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QGridLayout>
#include <QMutex>
#include <QPointer>
#include <QVBoxLayout>

#include <cstring>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

class Creation : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(CoreLog::instance().isPresent());
        // The first creation in the process loads the core library.
        ASSERT_EQ(Xelt_Release(Xelt_Create(nullptr)), 0);
        drainEvents();
        CoreLog::instance().reset();
        m_nWidgets = QApplication::allWidgets().size();
    }

    // All creations of the test are undone and nothing is left behind.
    void TearDown() override
    {
        drainEvents();
        EXPECT_EQ(QApplication::allWidgets().size(), m_nWidgets);
        CoreLog::instance().reset();
    }

    static std::string className(void *handle) { return paneWidget(handle)->metaObject()->className(); }

    static void expectFailureLog(int nType, const std::string &sDetail = std::string())
    {
        const std::string sType = std::to_string(nType);
        const auto vecRecords = CoreLog::instance().records();
        // Whatever went before, the failure is the last eight calls.
        ASSERT_GE(vecRecords.size(), 8U);
        const size_t nAt = vecRecords.size() - 8;
        EXPECT_TRUE(isErrorRecord(vecRecords, nAt, "XeltRender", "CreateShader",
                                  "CreateShader failed, type=" + sType + "." + sDetail));
        EXPECT_TRUE(isErrorRecord(vecRecords, nAt + 4, "XeltRender", "Xelt_CreateEx",
                                  "[XeltInterface::Xelt_CreateEx] new XeltYUVShader failed, type=" + sType));
    }

    int m_nWidgets = 0;
};

TEST_F(Creation, WithoutLayoutGivesAWidgetWithoutParent)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(className(handle), "CLS_ShaderYuv");
    EXPECT_EQ(paneWidget(handle)->parentWidget(), nullptr);
    EXPECT_FALSE(paneWidget(handle)->isVisible());
    EXPECT_THAT(CoreLog::instance().messages(), ElementsAre("CreateShader CLS_ShaderYuv."));
    EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
    EXPECT_EQ(Xelt_Release(handle), 0);
}

TEST_F(Creation, WithLayoutPlacesTheWidget)
{
    QWidget host;
    auto *pLayout = new QVBoxLayout(&host);
    void *first = Xelt_Create(pLayout);
    void *second = Xelt_Create(static_cast<QLayout *>(pLayout));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    ASSERT_EQ(pLayout->count(), 2);
    EXPECT_EQ(pLayout->itemAt(0)->widget(), first);
    EXPECT_EQ(pLayout->itemAt(1)->widget(), second);
    EXPECT_EQ(paneWidget(first)->parentWidget(), &host);
    EXPECT_EQ(Xelt_Release(first), 0);
    EXPECT_EQ(Xelt_Release(second), 0);
    EXPECT_EQ(pLayout->count(), 0);
    drainEvents();
}

TEST_F(Creation, AcceptedTypeCodesGiveTheSameClass)
{
    for (const int32_t nType : {0, 3, 4, 5, 6}) {
        SCOPED_TRACE(nType);
        CoreLog::instance().clear();
        void *handle = Xelt_CreateEx(&nType, sizeof nType);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(className(handle), "CLS_ShaderYuv");
        EXPECT_EQ(paneWidget(handle)->parentWidget(), nullptr);
        EXPECT_THAT(CoreLog::instance().messages(), ElementsAre("CreateShader CLS_ShaderYuv."));
        EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
        EXPECT_EQ(Xelt_Release(handle), 0);
    }
}

TEST_F(Creation, SubImageTypeCodeGivesItsOwnClass)
{
    // One byte is enough.
    const uint8_t nType = XELT_RENDERER_YUV_SUBIMAGE;
    void *handle = Xelt_CreateEx(&nType, 1);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(className(handle), "CLS_ShaderYuvSubImage");
    EXPECT_EQ(paneWidget(handle)->parentWidget(), nullptr);
    EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
    EXPECT_EQ(Xelt_Release(handle), 0);
}

TEST_F(Creation, OtherTypeCodesFailAndLogTwice)
{
    for (const int32_t nType : {1, 2, 8, 9, 255, 256, 65536, -1, -3, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(nType);
        CoreLog::instance().clear();
        EXPECT_EQ(Xelt_CreateEx(&nType, sizeof nType), nullptr);
        EXPECT_EQ(CoreLog::instance().records().size(), 8U);
        expectFailureLog(nType);
        EXPECT_EQ(QApplication::allWidgets().size(), m_nWidgets);
    }
}

TEST_F(Creation, NullParameterFailsSilently)
{
    EXPECT_EQ(Xelt_CreateEx(nullptr, 4), nullptr);
    EXPECT_EQ(Xelt_CreateEx(nullptr, 0), nullptr);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(Creation, LengthSaysHowManyBytesOfTheTypeCount)
{
    struct Case
    {
        std::vector<uint8_t> aBytes;
        int32_t nLength;
        int32_t nType;
    };
    const Case aCases[] = {
        {{}, 0, 0},
        {{1}, 1, 1},
        {{3}, 1, 3},
        {{0, 1}, 2, 256},
        {{5, 0}, 2, 5},
        {{0, 0, 2}, 3, 131072},
        {{6, 0, 0}, 3, 6},
        {{0, 0, 0, 1}, 4, 16777216},
        {{0xFF, 0xFF, 0xFF, 0xFF}, 4, -1},
        {{0xFF, 0xFF, 0xFF}, 3, 0xFFFFFF},
        {{7, 0}, 2, 7},
        {{4, 0, 0, 0}, 5, 4},
        {{2, 0, 0, 0}, INT32_MAX, 2},
    };
    for (const Case &testCase : aCases) {
        SCOPED_TRACE(testing::PrintToString(testCase.aBytes));
        // Bytes beyond these lie on a page that must not be read.
        const GuardedBytes bytes(testCase.aBytes.size());
        std::copy(testCase.aBytes.begin(), testCase.aBytes.end(), bytes.data());
        CoreLog::instance().clear();
        void *handle = Xelt_CreateEx(bytes.data(), testCase.nLength);
        const bool blAccepted = testCase.nType == 0 || (testCase.nType >= 3 && testCase.nType <= 7);
        EXPECT_EQ(handle != nullptr, blAccepted);
        if (handle != nullptr) {
            EXPECT_EQ(Xelt_Release(handle), 0);
        } else {
            expectFailureLog(testCase.nType);
        }
    }
}

TEST_F(Creation, LengthZeroIgnoresWhatTheBufferHolds)
{
    const uint8_t nRejected = 1;
    void *handle = Xelt_CreateEx(&nRejected, 0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(className(handle), "CLS_ShaderYuv");
    EXPECT_EQ(Xelt_Release(handle), 0);
}

// As a length of 0: neither the buffer nor what lies around it is looked at.
TEST_F(Creation, NegativeLengthReadsNothingAndIsTypeZero)
{
    const GuardedBytes nothing(0);
    const GuardedBytes rejected(4);
    rejected[0] = 1;
    for (const int32_t nLength : {-1, -4, -1000, INT32_MIN}) {
        for (const GuardedBytes *pBytes : {&nothing, &rejected}) {
            SCOPED_TRACE(testing::Message() << nLength << " with " << pBytes->size() << " bytes");
            CoreLog::instance().clear();
            void *handle = Xelt_CreateEx(pBytes->data(), nLength);
            ASSERT_NE(handle, nullptr);
            EXPECT_EQ(className(handle), "CLS_ShaderYuv");
            EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
            EXPECT_EQ(Xelt_Release(handle), 0);
        }
    }
}

TEST_F(Creation, FailedRendererAllocationIsReported)
{
    const int32_t nType = 3;
    const AllocationTrap trap(AllocationTrap::Form::NoThrow, 200, SIZE_MAX, [] { return false; });
    EXPECT_EQ(Xelt_CreateEx(&nType, sizeof nType), nullptr);
    EXPECT_TRUE(trap.hasSprung());
    EXPECT_EQ(CoreLog::instance().records().size(), 8U);
    expectFailureLog(nType);
}

TEST_F(Creation, FailedRendererAllocationOfCreateIsReportedUnderItsName)
{
    const AllocationTrap trap(AllocationTrap::Form::NoThrow, 200, SIZE_MAX, [] { return false; });
    EXPECT_EQ(Xelt_Create(nullptr), nullptr);
    EXPECT_TRUE(trap.hasSprung());
    const auto vecRecords = CoreLog::instance().records();
    ASSERT_EQ(vecRecords.size(), 8U);
    EXPECT_TRUE(isErrorRecord(vecRecords, 0, "XeltRender", "CreateShader", "CreateShader failed, type=0."));
    EXPECT_TRUE(isErrorRecord(vecRecords, 4, "XeltRender", "Xelt_Create",
                              "[XeltInterface::Xelt_Create] new XeltYUVShader failed"));
}

TEST_F(Creation, FailedMutexAllocationDeletesTheRendererAndFreesTheRegistry)
{
    const int32_t nType = 5;
    {
        const AllocationTrap trap(AllocationTrap::Form::NoThrow, sizeof(QMutex), sizeof(QMutex),
                                  [] { return false; });
        EXPECT_EQ(Xelt_CreateEx(&nType, sizeof nType), nullptr);
        EXPECT_TRUE(trap.hasSprung());
    }
    expectFailureLog(nType, " QMutex alloc faild");
    // Deleted at once, not by the event loop.
    EXPECT_EQ(QApplication::allWidgets().size(), m_nWidgets);
    void *handle = Xelt_CreateEx(&nType, sizeof nType);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(setRatioMode(handle, 1), 0);
    EXPECT_EQ(Xelt_Release(handle), 0);
}

TEST_F(Creation, FailedRegistrationIsReportedLikeAFailedMutex)
{
    const int32_t nType = 6;
    std::unique_ptr<AllocationTrap> pEntryTrap;
    {
        // Behind the mutex the registry allocates its entry.
        const AllocationTrap mutexTrap(
            AllocationTrap::Form::NoThrow, sizeof(QMutex), sizeof(QMutex), [&pEntryTrap] {
                pEntryTrap = std::make_unique<AllocationTrap>(AllocationTrap::Form::Throwing, 1, SIZE_MAX,
                                                              [] { return false; });
                return true;
            });
        EXPECT_EQ(Xelt_CreateEx(&nType, sizeof nType), nullptr);
    }
    ASSERT_NE(pEntryTrap, nullptr);
    EXPECT_TRUE(pEntryTrap->hasSprung());
    expectFailureLog(nType, " QMutex alloc faild");
    EXPECT_EQ(QApplication::allWidgets().size(), m_nWidgets);
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(Xelt_Release(handle), 0);
}

} // namespace
