// Creation where no widget can be made: a null handle and its log, never the end of the process.
#include "CoreLog.h"
#include "ErrorRecord.h"
#include "XeltRender.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace {

using namespace xelttest;

class NoApplication : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(CoreLog::instance().isPresent());
        CoreLog::instance().reset();
    }

    static void expectBothCreatorsFail()
    {
        const int32_t nType = 4;
        EXPECT_EQ(Xelt_Create(nullptr), nullptr);
        EXPECT_EQ(Xelt_CreateEx(&nType, sizeof nType), nullptr);
        const auto vecRecords = CoreLog::instance().records();
        ASSERT_EQ(vecRecords.size(), 16U);
        EXPECT_TRUE(
            isErrorRecord(vecRecords, 0, "XeltRender", "CreateShader", "CreateShader failed, type=0."));
        EXPECT_TRUE(isErrorRecord(vecRecords, 4, "XeltRender", "Xelt_Create",
                                  "[XeltInterface::Xelt_Create] new XeltYUVShader failed"));
        EXPECT_TRUE(
            isErrorRecord(vecRecords, 8, "XeltRender", "CreateShader", "CreateShader failed, type=4."));
        EXPECT_TRUE(isErrorRecord(vecRecords, 12, "XeltRender", "Xelt_CreateEx",
                                  "[XeltInterface::Xelt_CreateEx] new XeltYUVShader failed, type=4"));
    }
};

TEST_F(NoApplication, CreationFails)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    expectBothCreatorsFail();
}

TEST_F(NoApplication, CreationFailsWithAConsoleApplication)
{
    int argc = 0;
    const QCoreApplication app(argc, nullptr);
    expectBothCreatorsFail();
}

TEST_F(NoApplication, OtherExportsAnswerAsForUnknownHandles)
{
    int nValue = 1;
    EXPECT_EQ(Xelt_SetParam(&nValue, XELTCMD_SET_STOPDRAW_PARA, &nValue, sizeof nValue), -1);
    EXPECT_EQ(Xelt_GetParam(&nValue, XELTCMD_GET_IS_OPENGLES, &nValue, sizeof nValue), -1);
    EXPECT_EQ(Xelt_ShowYuvFrame(&nValue, &nValue, sizeof nValue), -1);
    Xelt_ClearDraw(&nValue);
    EXPECT_EQ(Xelt_Release(&nValue), 0);
    EXPECT_EQ(Xelt_Release(nullptr), -1);
    EXPECT_EQ(nValue, 1);
}

} // namespace
