// Core libraries with all names, and with some missing: what arrives and what does not.
#include "ProbeRun.h"

#include <gmock/gmock.h>

#include <regex>

namespace {

using namespace xelttest;
using testing::HasSubstr;
using testing::Not;

ProbeResult runWith(const std::string &sVariant, const QStringList &arguments,
                    ProbeFolder::Display display = ProbeFolder::Display::None)
{
    const ProbeFolder folder;
    folder.placeCore(sVariant);
    return folder.run(arguments, std::string(), display);
}

TEST(CompleteCore, ResolvesEveryName)
{
    const ProbeResult result = runWith("without_none", {QStringLiteral("entries")});
    EXPECT_EQ(result.sOutput, "load=0\nmismatches=0\ndistinct=127\n");
    EXPECT_EQ(result.sErrors, "");
}

TEST(CompleteCore, GetsWholeErrorRecords)
{
    const ProbeResult result =
        runWith("without_none", {QStringLiteral("operation"), QStringLiteral("record")});
    EXPECT_TRUE(std::regex_match(result.sOutput,
                                 std::regex("load=0\n"
                                            "\\[without_none\\] sdk_log_buf_lock\\(\\)\n"
                                            "\\[without_none\\] sdk_log_buf_date\\(\\)\n"
                                            "\\[without_none\\] sdk_log_buf_msg\\(file: Source, "
                                            "func:Function, line: [1-9][0-9]* \\)\n"
                                            "\\[without_none\\] sdk_err_buf_msg_unlock\\(the error\\)\n")))
        << result.sOutput;
    EXPECT_EQ(result.sErrors, "");
}

TEST(CompleteCore, IsCalledByNoOtherName)
{
    const ProbeResult result =
        runWith("without_none", {QStringLiteral("picture")}, ProbeFolder::Display::Real);
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_THAT(result.sOutput, HasSubstr("[without_none] sdk_log_msg(CreateShader CLS_ShaderYuv.)\n"));
    EXPECT_THAT(result.sOutput, HasSubstr("white=1\n"));
    EXPECT_THAT(result.sOutput, Not(HasSubstr("NEVER CALLED")));
}

TEST(MissingEntries, NameIsNullAndTheOthersResolved)
{
    for (const char *pszName : {"sdk_log_msg", "sdk_log_buf_lock", "sdk_log_buf_date", "sdk_log_buf_msg",
                                "sdk_err_buf_msg_unlock", "sdk_log_get_level"}) {
        const ProbeResult result = runWith(std::string("without_") + pszName, {QStringLiteral("entries")});
        EXPECT_EQ(result.sOutput, "load=0\nmismatches=0\ndistinct=126\n") << pszName;
        EXPECT_EQ(result.sErrors, "") << pszName;
    }
    const ProbeResult result = runWith("without_all", {QStringLiteral("entries")});
    EXPECT_EQ(result.sOutput, "load=0\nmismatches=0\ndistinct=0\n");
}

TEST(MissingEntries, WithoutTheLevelOnlyErrorTextsArrive)
{
    const ProbeResult result = runWith("without_sdk_log_get_level", {QStringLiteral("fail")});
    const std::string sTag = "[without_sdk_log_get_level] ";
    const std::string sHead =
        sTag + "sdk_log_buf_lock()\n" + sTag + "sdk_log_buf_date()\n" + sTag + "sdk_err_buf_msg_unlock(";
    EXPECT_EQ(result.sOutput,
              sHead + "CreateShader failed, type=1.)\n" + sHead +
                  "[XeltInterface::Xelt_CreateEx] new XeltYUVShader failed, type=1)\ncreated=0\n");
    EXPECT_EQ(result.sErrors, "1227,CLS_OmbrixApi::inner_sdk_log_get_level"
                              "1227,CLS_OmbrixApi::inner_sdk_log_get_level");
}

TEST(MissingEntries, WithoutThePositionLineTheRestOfARecordArrives)
{
    const ProbeResult result =
        runWith("without_sdk_log_buf_msg", {QStringLiteral("operation"), QStringLiteral("record")});
    const std::string sTag = "[without_sdk_log_buf_msg] ";
    EXPECT_EQ(result.sOutput, "load=0\n" + sTag + "sdk_log_buf_lock()\n" + sTag + "sdk_log_buf_date()\n" +
                                  sTag + "sdk_err_buf_msg_unlock(the error)\n");
    EXPECT_EQ(result.sErrors, "580,CLS_OmbrixApi::inner_sdk_log_buf_msg");
}

} // namespace
