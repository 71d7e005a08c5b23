// Without a core library: the fallback notes on standard error, to the character, and nothing else.
#include "ProbeRun.h"

#include <gtest/gtest.h>

namespace {

using namespace xelttest;

constexpr char k_szMsg[] = "562,CLS_OmbrixApi::inner_sdk_log_msg";
constexpr char k_szLock[] = "568,CLS_OmbrixApi::inner_sdk_log_buf_lock";
constexpr char k_szDate[] = "574,CLS_OmbrixApi::inner_sdk_log_buf_date";
constexpr char k_szPosition[] = "580,CLS_OmbrixApi::inner_sdk_log_buf_msg";
constexpr char k_szError[] = "618,CLS_OmbrixApi::inner_sdk_err_buf_msg_unlock";
constexpr char k_szLevel[] = "1227,CLS_OmbrixApi::inner_sdk_log_get_level";

std::string join(std::initializer_list<const char *> notes)
{
    std::string sAll;
    for (const char *pszNote : notes) {
        sAll += pszNote;
    }
    return sAll;
}

struct OperationCase
{
    const char *pszOperation;
    std::string sNotes;
    std::string sOutput;
};

class WithoutCore : public testing::TestWithParam<OperationCase>
{
};

TEST_P(WithoutCore, OperationWritesItsNote)
{
    const ProbeResult result =
        ProbeFolder().run({QStringLiteral("operation"), QString::fromUtf8(GetParam().pszOperation)});
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_EQ(result.sErrors, GetParam().sNotes);
    EXPECT_EQ(result.sOutput, "load=-1\n" + GetParam().sOutput);
}

INSTANTIATE_TEST_SUITE_P(
    Operations, WithoutCore,
    testing::Values(OperationCase{"msg", k_szLevel, ""}, OperationCase{"lock", k_szLock, ""},
                    OperationCase{"date", k_szDate, ""}, OperationCase{"position", k_szLevel, ""},
                    OperationCase{"error", k_szError, ""}, OperationCase{"level", k_szLevel, "level=0\n"},
                    OperationCase{"record", join({k_szLock, k_szDate, k_szLevel, k_szError}), ""}),
    [](const auto &testCase) { return testCase.param.pszOperation; });

TEST(WithoutCoreLibrary, TableStaysEmpty)
{
    const ProbeResult result = ProbeFolder().run({QStringLiteral("entries")});
    EXPECT_EQ(result.sOutput, "load=-1\nmismatches=0\ndistinct=0\n");
    EXPECT_EQ(result.sErrors, "");
}

TEST(WithoutCoreLibrary, RenderersWorkAndEachLogCallWritesItsNote)
{
    const ProbeResult result = ProbeFolder().run({QStringLiteral("create"), QStringLiteral("2")});
    EXPECT_EQ(result.nExitCode, 0);
    const std::string sOne = "created=1\nset=0\nreleased=0\n";
    EXPECT_EQ(result.sOutput, sOne + sOne + "loads=0\n");
    // The constructor, both lines of the ratio mode, the release: four messages for each renderer.
    EXPECT_EQ(result.sErrors,
              join({k_szLevel, k_szLevel, k_szLevel, k_szLevel, k_szLevel, k_szLevel, k_szLevel, k_szLevel}));
}

TEST(WithoutCoreLibrary, FailedCreationWritesBothRecordsAsNotes)
{
    const ProbeResult result = ProbeFolder().run({QStringLiteral("fail")});
    EXPECT_EQ(result.sOutput, "created=0\n");
    const std::string sRecord = join({k_szLock, k_szDate, k_szLevel, k_szError});
    EXPECT_EQ(result.sErrors, sRecord + sRecord);
}

TEST(WithoutCoreLibrary, PicturesAreDrawn)
{
    const ProbeResult result =
        ProbeFolder().run({QStringLiteral("picture")}, std::string(), ProbeFolder::Display::Real);
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_EQ(result.sOutput, "shown=0\nwhite=1\n");
}

// A core library that lacks one name: its operation falls back, the others go on.
struct MissingCase
{
    const char *pszVariant;
    const char *pszOperation;
    std::string sNotes;
};

class WithoutName : public testing::TestWithParam<MissingCase>
{
};

TEST_P(WithoutName, OperationWritesItsNote)
{
    const ProbeFolder folder;
    folder.placeCore(GetParam().pszVariant);
    const ProbeResult result =
        folder.run({QStringLiteral("operation"), QString::fromUtf8(GetParam().pszOperation)});
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_EQ(result.sErrors, GetParam().sNotes);
    // The text is lost, not written elsewhere.
    EXPECT_EQ(result.sOutput, "load=0\n");
}

INSTANTIATE_TEST_SUITE_P(Names, WithoutName,
                         testing::Values(MissingCase{"without_sdk_log_msg", "msg", k_szMsg},
                                         MissingCase{"without_sdk_log_buf_lock", "lock", k_szLock},
                                         MissingCase{"without_sdk_log_buf_date", "date", k_szDate},
                                         MissingCase{"without_sdk_log_buf_msg", "position", k_szPosition},
                                         MissingCase{"without_sdk_err_buf_msg_unlock", "error", k_szError},
                                         MissingCase{"without_sdk_log_get_level", "msg", k_szLevel},
                                         MissingCase{"without_sdk_log_get_level", "position", k_szLevel},
                                         MissingCase{"without_all", "record",
                                                     join({k_szLock, k_szDate, k_szLevel, k_szError})}),
                         [](const auto &testCase) {
                             return std::string(testCase.param.pszVariant) + "_" +
                                    testCase.param.pszOperation;
                         });

} // namespace
