// The resource is there for as long as the library is loaded. This program is not linked to the library, and
// has none but a QCoreApplication.
#include "LoadedLibrary.h"
#include "ResourceRecorder.h"
#include "ShaderFiles.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>

#include <map>
#include <vector>

namespace {

using namespace xelttest;
using ::testing::Contains;
using ::testing::Not;

QStringList rootEntries()
{
    return QDir(QStringLiteral(":/")).entryList();
}

// What is in the root with the library and not without it.
QStringList addedEntries(const QStringList &before)
{
    QStringList added = rootEntries();
    for (const QString &sEntry : before) {
        added.removeAll(sEntry);
    }
    return added;
}

int filesPresent()
{
    int nPresent = 0;
    for (const ShaderFile &file : k_aShaderFiles) {
        nPresent += QFile::exists(file.pszPath) ? 1 : 0;
    }
    return nPresent;
}

TEST(LoadTest, ResourceIsAbsentThenPresentThenAbsentAgain)
{
    for (int nRound = 0; nRound < 3; ++nRound) {
        SCOPED_TRACE(nRound);
        const QStringList before = rootEntries();
        ASSERT_FALSE(LoadedLibrary::isLoaded());
        EXPECT_THAT(before, Not(Contains("opengl")));
        EXPECT_THAT(before, Not(Contains("shaderscommon")));
        EXPECT_EQ(filesPresent(), 0);

        LoadedLibrary library;
        ASSERT_TRUE(library.isOpen()) << library.problem();
        EXPECT_EQ(addedEntries(before), QStringList({"opengl", "shaderscommon"}));
        EXPECT_EQ(filesPresent(), 7);

        ASSERT_TRUE(library.close());
        EXPECT_FALSE(LoadedLibrary::isLoaded());
        EXPECT_EQ(rootEntries(), before);
        EXPECT_EQ(filesPresent(), 0);
    }
}

TEST(LoadTest, RegistersOnceAndUnregistersTheSameTables)
{
    clearResourceCalls();
    LoadedLibrary library;
    ASSERT_TRUE(library.isOpen()) << library.problem();
    ASSERT_EQ(resourceCalls("libXeltRender").size(), 1u);
    EXPECT_TRUE(resourceCalls("libXeltRender")[0].blRegister);
    EXPECT_EQ(resourceCalls("libXeltRender")[0].nVersion, 3);

    ASSERT_TRUE(library.close());
    const std::vector<ResourceCall> vecCalls = resourceCalls("libXeltRender");
    ASSERT_EQ(vecCalls.size(), 2u);
    EXPECT_FALSE(vecCalls[1].blRegister);
    EXPECT_TRUE(vecCalls[1].sameTables(vecCalls[0]));
}

TEST(LoadTest, LoadingTwiceRegistersOnce)
{
    clearResourceCalls();
    LoadedLibrary first;
    LoadedLibrary second;
    ASSERT_TRUE(first.isOpen() && second.isOpen());
    EXPECT_EQ(resourceCalls("libXeltRender").size(), 1u);
    ASSERT_TRUE(first.close());
    EXPECT_EQ(filesPresent(), 7) << "the other reference still holds the library";
    ASSERT_TRUE(second.close());
    EXPECT_EQ(filesPresent(), 0);
}

TEST(LoadTest, TreeHoldsPlainFilesOfTheCLocale)
{
    clearResourceCalls();
    LoadedLibrary library;
    ASSERT_TRUE(library.isOpen()) << library.problem();
    ASSERT_EQ(resourceCalls("libXeltRender").size(), 1u);
    const std::vector<ResourceFile> vecFiles = filesOf(resourceCalls("libXeltRender")[0]);

    std::map<QString, int> mapSizes;
    for (const ResourceFile &file : vecFiles) {
        SCOPED_TRACE(file.sPath.toStdString());
        mapSizes[file.sPath] = static_cast<int>(file.sContents.size());
        EXPECT_EQ(file.nFlags, 0) << "compressed";
        EXPECT_EQ(file.nLanguage, static_cast<int>(QLocale::C));
        EXPECT_EQ(file.nCountry, static_cast<int>(QLocale::AnyCountry));
        EXPECT_GT(file.nModified, 0u);
        // The payload is the text itself.
        QFile resource(file.sPath);
        ASSERT_TRUE(resource.open(QIODevice::ReadOnly));
        EXPECT_EQ(resource.readAll().toStdString(), file.sContents);
    }
    std::map<QString, int> mapExpected;
    for (const ShaderFile &file : k_aShaderFiles) {
        mapExpected[file.pszPath] = file.nSize;
    }
    EXPECT_EQ(vecFiles.size(), mapExpected.size());
    EXPECT_EQ(mapSizes, mapExpected);
}

} // namespace

int main(int argc, char *argv[])
{
    testing::InitGoogleMock(&argc, argv);
    const QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
