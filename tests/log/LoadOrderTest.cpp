// Where the core library is looked for, and when.
#include "ProbeRun.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace {

using namespace xelttest;
using testing::HasSubstr;
using testing::Not;

const QStringList k_lstMessage = {QStringLiteral("operation"), QStringLiteral("msg")};

TEST(LoadOrder, BesideTheProgramFirst)
{
    const ProbeFolder folder;
    folder.placeCore("without_none");
    folder.placeCore("without_sdk_log_buf_lock", "elsewhere/Ombrix.dll");
    const ProbeResult result = folder.run(k_lstMessage, folder.path("elsewhere"));
    EXPECT_EQ(result.sOutput, "load=0\n[without_none] sdk_log_msg(the message)\n");
}

TEST(LoadOrder, ThenTheSystemsOrder)
{
    const ProbeFolder folder;
    folder.placeCore("without_sdk_log_buf_lock", "elsewhere/Ombrix.dll");
    const ProbeResult result = folder.run(k_lstMessage, folder.path("elsewhere"));
    EXPECT_EQ(result.sOutput, "load=0\n[without_sdk_log_buf_lock] sdk_log_msg(the message)\n");
}

TEST(LoadOrder, NotInTheWorkingFolder)
{
    const ProbeFolder folder;
    folder.placeCore("without_none", "Ombrix.dll"); // the program runs in this folder, and lies in "host"
    const ProbeResult result = folder.run(k_lstMessage);
    EXPECT_EQ(result.sOutput, "load=-1\n");
}

TEST(LoadOrder, NameCountsToTheLetter)
{
    const ProbeFolder folder;
    folder.placeCore("without_none", "host/ombrix.dll");
    const ProbeResult result = folder.run(k_lstMessage);
    EXPECT_EQ(result.sOutput, "load=-1\n");
}

TEST(LoadOrder, UnloadableFileBesideTheProgramIsPassedOver)
{
    const ProbeFolder folder;
    std::filesystem::create_directories(folder.path("host/Ombrix.dll"));
    folder.placeCore("without_none", "elsewhere/Ombrix.dll");
    EXPECT_EQ(folder.run(k_lstMessage).sOutput, "load=-1\n");
    EXPECT_EQ(folder.run(k_lstMessage, folder.path("elsewhere")).sOutput,
              "load=0\n[without_none] sdk_log_msg(the message)\n");
}

TEST(LoadOrder, RepeatedCreationsLoadOnce)
{
    const ProbeFolder folder;
    folder.placeCore("without_none");
    const ProbeResult result = folder.run({QStringLiteral("create"), QStringLiteral("5")});
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_THAT(result.sOutput, HasSubstr("loads=1\n"));
    EXPECT_EQ(result.sErrors, "");
}

TEST(LoadOrder, FailedLoadIsTriedAgainByTheNextCreation)
{
    const ProbeFolder folder;
    const ProbeResult result =
        folder.run({QStringLiteral("retry"), QString::fromStdString(ProbeFolder::variantPath("without_none")),
                    QString::fromStdString(folder.path("host/Ombrix.dll"))});
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_THAT(result.sOutput,
                testing::StartsWith("created=1\nloaded=0\nloaded=0\n"
                                    "[without_none] sdk_log_msg(CreateShader CLS_ShaderYuv.)\n"
                                    "created=1\nloaded=1\nloads=1\n"));
    // The first constructor and the ratio mode's two lines.
    const std::string sNote = "1227,CLS_OmbrixApi::inner_sdk_log_get_level";
    EXPECT_EQ(result.sErrors, sNote + sNote + sNote);
}

TEST(LoadOrder, RacingFirstLoadsAllSucceed)
{
    const ProbeFolder folder;
    folder.placeCore("without_none");
    for (int nRound = 0; nRound < 20; ++nRound) {
        const ProbeResult result = folder.run({QStringLiteral("race")});
        EXPECT_EQ(result.sOutput, "failures=0\n");
    }
}

} // namespace
