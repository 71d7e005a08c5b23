// The registry, and what the exports make of its entries. They are compiled here once more, under other names,
// with a registry that the tests can reach.
#define Xelt_Create Inside_Create
#define Xelt_CreateEx Inside_CreateEx
#define Xelt_Release Inside_Release
#define Xelt_SetParam Inside_SetParam
#define Xelt_GetParam Inside_GetParam
#define Xelt_ShowYuvFrame Inside_ShowYuvFrame
#define Xelt_ClearDraw Inside_ClearDraw
#include "interface/XeltRender.cpp"

#include "Background.h"
#include "CoreLog.h"
#include "GuardedBytes.h"
#include "HostWindow.h"

#include <gtest/gtest.h>

namespace {

using namespace xelttest;

constexpr int k_nTimeoutMs = 200;

RendererRegistry::EntryPtr newEntry()
{
    auto pEntry = std::make_shared<RendererEntry>();
    pEntry->pMutex = std::make_unique<QMutex>();
    return pEntry;
}

TEST(Registry, KnowsWhatWasInsertedUntilItIsRemoved)
{
    RendererRegistry registry;
    char aHandles[2] = {};
    const auto pEntry = newEntry();
    EXPECT_EQ(registry.Find(&aHandles[0], k_nTimeoutMs), nullptr);
    EXPECT_EQ(registry.Remove(&aHandles[0]), nullptr);
    registry.Insert(&aHandles[0], pEntry);
    EXPECT_EQ(registry.Find(&aHandles[0], k_nTimeoutMs), pEntry);
    EXPECT_EQ(registry.Find(&aHandles[1], k_nTimeoutMs), nullptr);
    EXPECT_EQ(registry.Find(nullptr, k_nTimeoutMs), nullptr);
    EXPECT_EQ(registry.Remove(&aHandles[0]), pEntry);
    EXPECT_EQ(registry.Find(&aHandles[0], k_nTimeoutMs), nullptr);
    EXPECT_EQ(registry.Remove(&aHandles[0]), nullptr);
    EXPECT_EQ(pEntry.use_count(), 1) << "nothing of it is left in the registry";
}

TEST(Registry, InsertingAKnownHandleReplacesItsEntry)
{
    RendererRegistry registry;
    char aHandles[2] = {};
    const auto pFirst = newEntry();
    const auto pSecond = newEntry();
    const auto pOther = newEntry();
    registry.Insert(&aHandles[0], pFirst);
    registry.Insert(&aHandles[1], pOther);
    registry.Insert(&aHandles[0], pSecond);
    EXPECT_EQ(registry.Find(&aHandles[0], k_nTimeoutMs), pSecond);
    EXPECT_EQ(registry.Find(&aHandles[1], k_nTimeoutMs), pOther);
    // There is one entry; whoever holds the first one may go on with it.
    EXPECT_EQ(registry.Remove(&aHandles[0]), pSecond);
    EXPECT_EQ(registry.Remove(&aHandles[0]), nullptr);
    EXPECT_TRUE(pFirst->pMutex->tryLock());
    pFirst->pMutex->unlock();
}

TEST(Registry, FindReadsBesideReadersAndGivesUpBehindAWriter)
{
    RendererRegistry registry;
    char handle = 0;
    const auto pEntry = newEntry();
    registry.Insert(&handle, pEntry);
    registry.Lock().lockForRead();
    EXPECT_EQ(Background([&] { return registry.Find(&handle, k_nTimeoutMs) == pEntry; }).join().nResult, 1);
    registry.Lock().unlock();

    registry.Lock().lockForWrite();
    const Timed found = Background([&] { return registry.Find(&handle, k_nTimeoutMs) != nullptr; }).join();
    registry.Lock().unlock();
    EXPECT_EQ(found.nResult, 0);
    EXPECT_TRUE(found.lasted(Milliseconds(k_nTimeoutMs))) << found.duration.count();
    EXPECT_EQ(registry.Find(&handle, k_nTimeoutMs), pEntry) << "and leaves it unlocked";
}

class RegistryEntry : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(CoreLog::instance().isPresent());
        ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0);
        CoreLog::instance().reset();
    }
    void TearDown() override { drainEvents(); }

    static void insert(void *handle, const RendererRegistry::EntryPtr &pEntry)
    {
        const QWriteLocker locker(&g_registry.Lock());
        g_registry.Insert(handle, pEntry);
    }
    static int32_t setRatio(void *handle)
    {
        const XeltDrawRatioPara para{1};
        return Inside_SetParam(handle, XELTCMD_SET_DRAW_RATIO_MODE, &para, sizeof para);
    }
    static int32_t showFrame(void *handle)
    {
        VideoFrameDesc frame{};
        frame.iWidth = 16;
        frame.iHeight = 16;
        return Inside_ShowYuvFrame(handle, &frame, sizeof frame);
    }
};

TEST_F(RegistryEntry, ItsPresentMutexIsTheOneThatCallsTake)
{
    void *handle = Inside_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    const auto pFirst = g_registry.Find(handle, k_nTimeoutMs);
    ASSERT_NE(pFirst, nullptr);
    const auto pSecond = newEntry();
    pSecond->pRenderer = pFirst->pRenderer;
    insert(handle, pSecond);

    pFirst->pMutex->lock();
    EXPECT_EQ(Background([=] { return showFrame(handle); }).join().nResult, 0);
    EXPECT_EQ(setRatio(handle), 0);
    pFirst->pMutex->unlock();
    pSecond->pMutex->lock();
    const Timed shown = Background([=] { return showFrame(handle); }).join();
    EXPECT_EQ(shown.nResult, -1);
    EXPECT_TRUE(shown.lasted(Milliseconds(500))) << shown.duration.count();
    pSecond->pMutex->unlock();
    EXPECT_EQ(showFrame(handle), 0);

    EXPECT_EQ(Inside_Release(handle), 0);
}

// A call that found its entry in time, and comes to its turn when the renderer is gone.
TEST_F(RegistryEntry, OfAnEndedRendererAnswersLikeAnUnknownHandle)
{
    const GuardedBytes nothing(0); // an address that must not be read
    void *handle = nothing.data();
    insert(handle, newEntry());
    EXPECT_EQ(setRatio(handle), -1);
    EXPECT_EQ(showFrame(handle), -1);
    uint32_t nOpenGLES = 77;
    EXPECT_EQ(Inside_GetParam(handle, XELTCMD_GET_IS_OPENGLES, &nOpenGLES, sizeof nOpenGLES), -1);
    EXPECT_EQ(nOpenGLES, 77U);
    Inside_ClearDraw(handle);
    EXPECT_TRUE(CoreLog::instance().records().empty());
    EXPECT_EQ(Inside_Release(handle), 0);
    EXPECT_EQ(CoreLog::instance().records().size(), 1U) << "the release's own line";
}

TEST_F(RegistryEntry, WithoutAMutexItIsAnsweredLikeAnUnknownHandle)
{
    const GuardedBytes nothing(0); // an address that must not be read
    void *handle = nothing.data();
    for (const auto &pEntry : {RendererRegistry::EntryPtr(), std::make_shared<RendererEntry>()}) {
        insert(handle, pEntry);
        EXPECT_EQ(setRatio(handle), -1);
        EXPECT_EQ(showFrame(handle), -1);
        EXPECT_EQ(Inside_Release(handle), 0);
    }
}

// The renderer is whole; only its entry has no mutex. Nothing reaches it, and it is not disposed of.
TEST_F(RegistryEntry, WithoutAMutexItsRendererIsOutOfReach)
{
    void *handle = Inside_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    const auto pEntry = g_registry.Find(handle, k_nTimeoutMs);
    insert(handle, nullptr);
    EXPECT_EQ(setRatio(handle), -1);
    EXPECT_EQ(showFrame(handle), -1);
    EXPECT_EQ(Inside_Release(handle), 0);
    drainEvents();
    insert(handle, pEntry);
    EXPECT_EQ(showFrame(handle), 0) << "it is still there";
    EXPECT_EQ(Inside_Release(handle), 0);
}

} // namespace
