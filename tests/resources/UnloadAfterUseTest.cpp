// A host that made and released renderers can unload the library, and the resource goes with it.
#include "LoadedLibrary.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdint>

namespace {

using xelttest::LoadedLibrary;

constexpr char k_szFile[] = ":/shaderscommon/colorspace.glsl";

void makeAndRelease(const LoadedLibrary &library, int32_t nType)
{
    const auto pfnCreate =
        reinterpret_cast<void *(*)(const void *, int32_t)>(library.function("Xelt_CreateEx"));
    const auto pfnRelease = reinterpret_cast<int32_t (*)(void *)>(library.function("Xelt_Release"));
    ASSERT_NE(pfnCreate, nullptr);
    ASSERT_NE(pfnRelease, nullptr);
    void *handle = pfnCreate(&nType, sizeof nType);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(pfnRelease(handle), 0);
    // The widget's deletion is deferred, and its code must still be there.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(UnloadAfterUseTest, ResourceIsGoneAfterRenderersWereMade)
{
    for (const int32_t nType : {0, 7}) {
        SCOPED_TRACE(nType);
        EXPECT_FALSE(QFile::exists(k_szFile));
        LoadedLibrary library;
        ASSERT_TRUE(library.isOpen()) << library.problem();
        makeAndRelease(library, nType);
        EXPECT_TRUE(QFile::exists(k_szFile));
        ASSERT_TRUE(library.close());
        EXPECT_FALSE(LoadedLibrary::isLoaded());
        EXPECT_FALSE(QFile::exists(k_szFile));
    }
}

} // namespace
