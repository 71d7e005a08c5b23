// Loading a file beside a module: by the module's name, by its handle, and with paths that are too long.
#include "ProbeRun.h"
#include "System.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>

#ifndef _WIN32
#include <dlfcn.h>
#endif

namespace {

using namespace xelttest;

class LoadBeside : public testing::Test
{
protected:
    // The module's name, the file's name and, if not empty, the path of a module whose handle is given.
    // Both lines are the same: one is with the altered search path.
    void expectLoaded(const std::string &sModule, const std::string &sFile, const std::string &sHandle,
                      const std::string &sPath, const std::string &sVariant) const
    {
        const std::string sOne = comparablePath(sPath) + "\n[" + sVariant + "] sdk_log_msg(hello)\n";
        EXPECT_EQ(output(sModule, sFile, sHandle), sOne + sOne);
    }
    void expectNull(const std::string &sModule, const std::string &sFile,
                    const std::string &sHandle = std::string()) const
    {
        EXPECT_EQ(output(sModule, sFile, sHandle), "null\nnull\n");
    }

    std::string output(const std::string &sModule, const std::string &sFile, const std::string &sHandle) const
    {
        const ProbeResult result =
            m_folder.run({QStringLiteral("beside"), QString::fromStdString(sModule),
                          QString::fromStdString(sFile), QString::fromStdString(sHandle)});
        EXPECT_EQ(result.nExitCode, 0);
        return comparablePath(result.sOutput);
    }

    ProbeFolder m_folder;
};

TEST_F(LoadBeside, EmptyNameLoadsTheBareFileName)
{
    m_folder.placeCore("without_none", "host/Other.so");
    expectLoaded("", "Other.so", "", m_folder.path("host/Other.so"), "without_none");
    expectNull("", "Missing.so");
}

TEST_F(LoadBeside, HandleGivesItsOwnFolder)
{
    m_folder.placeCore("without_none", "Mixed Case/First.so");
    m_folder.placeCore("without_sdk_log_buf_lock", "Mixed Case/Second.so");
    m_folder.placeCore("without_sdk_log_buf_date", "host/Second.so");
    expectLoaded("", "Second.so", m_folder.path("Mixed Case/First.so"), m_folder.path("Mixed Case/Second.so"),
                 "without_sdk_log_buf_lock");
    // With a handle the name does not matter.
    expectLoaded("no such module", "Second.so", m_folder.path("Mixed Case/First.so"),
                 m_folder.path("Mixed Case/Second.so"), "without_sdk_log_buf_lock");
    expectNull("", "Third.so", m_folder.path("Mixed Case/First.so"));
}

TEST_F(LoadBeside, NameIsCutOutOfThePath)
{
    // Everything from the name on gives way to the file.
    const std::string sLibraries = output(QT_CORE_FILE, QT_GUI_FILE, "");
    const std::string sFirst = sLibraries.substr(0, sLibraries.find('\n') + 1);
    EXPECT_THAT(sFirst, testing::EndsWith(comparablePath(std::string("/") + QT_GUI_FILE) + "\n"));
    EXPECT_TRUE(std::filesystem::path(sFirst).is_absolute()) << sFirst;
    EXPECT_EQ(sLibraries, sFirst + sFirst);
    expectNull(QT_CORE_FILE, "libNotThere.so");
}

// By the file's own path, where the system knows no altered search path for modules.
TEST_F(LoadBeside, SearchPathIsAlteredOnRequest)
{
    m_folder.placeCore("without_none", "modules/First.so");
    const ProbeResult result = m_folder.run(
        {QStringLiteral("load-calls"), QString::fromStdString(m_folder.path("modules/First.so"))});
    EXPECT_EQ(result.nExitCode, 0);
#ifdef _WIN32
    EXPECT_EQ(result.sOutput, "LoadLibraryA 0\nLoadLibraryExA 8\n"); // LOAD_WITH_ALTERED_SEARCH_PATH
#else
    const std::string sCall = "dlopen " + std::to_string(RTLD_NOW | RTLD_LOCAL) + "\n";
    EXPECT_EQ(result.sOutput, sCall + sCall);
#endif
}

#ifdef _WIN32
// Windows finds modules whatever the case of their names; so is the cut point.
TEST_F(LoadBeside, CaseIsFoldedBeforeTheNameIsCutOut)
{
    std::string sUpper = QT_CORE_FILE;
    std::transform(sUpper.begin(), sUpper.end(), sUpper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    ASSERT_NE(sUpper, QT_CORE_FILE);
    const std::string sLibraries = output(QT_CORE_FILE, QT_GUI_FILE, "");
    EXPECT_NE(sLibraries, "null\nnull\n");
    EXPECT_EQ(output(sUpper, QT_GUI_FILE, ""), sLibraries);
}
#endif

TEST_F(LoadBeside, NameThatIsNotInThePathGivesNull)
{
    m_folder.placeCore("without_none", "host/Other.so");
    expectNull("no-such-module", "Other.so");
    expectNull(std::string(1000, 'x'), "Other.so");
}

TEST_F(LoadBeside, PathIsCutTo259Characters)
{
    std::string sFolder = "deep";
    while (m_folder.path(sFolder).size() < 200) {
        sFolder += "/deeper";
    }
    const size_t nName = 259 - m_folder.path(sFolder).size() - 1;
    // With a suffix: a name without one is given one on some systems.
    const std::string sFile = sFolder + "/" + std::string(nName - 3, 'm') + ".so";
    m_folder.placeCore("without_none", sFile);
    const std::string sPath = m_folder.path(sFile);
    ASSERT_EQ(sPath.size(), 259U);
    expectLoaded("", sPath, "", sPath, "without_none");
    // What is longer loses its end.
    expectLoaded("", sPath + "-and-more", "", sPath, "without_none");
    expectNull("", sPath.substr(0, 258));
}

TEST_F(LoadBeside, FileIsCutToTheRoomBehindTheFolder)
{
    m_folder.placeCore("without_none", "modules/First.so");
    const std::string sFolder = m_folder.path("modules");
    ASSERT_LT(sFolder.size(), 200U);
    const std::string sName = std::string(259 - sFolder.size() - 4, 'n') + ".so";
    m_folder.placeCore("without_sdk_log_buf_lock", "modules/" + sName);
    expectLoaded("", sName + "cut", m_folder.path("modules/First.so"), m_folder.path("modules/" + sName),
                 "without_sdk_log_buf_lock");
}

} // namespace
