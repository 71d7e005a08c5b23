// While a creation holds the registry: look-ups give up after 500 ms, another creation after 2000 ms, a
// release waits as long as it takes. The creation is held up inside the allocation that it makes under the
// registry's write lock.
#include "AllocationTrap.h"
#include "Background.h"
#include "CoreLog.h"
#include "ErrorRecord.h"
#include "Frames.h"
#include "HostWindow.h"

#include <memory>

#include <QApplication>
#include <QMutex>

#include <gtest/gtest.h>

namespace {

using namespace xelttest;

// Runs the body in the middle of a creation. The new handle, or null when the body says false.
void *createAround(const std::function<bool()> &body)
{
    const AllocationTrap trap(AllocationTrap::Form::NoThrow, sizeof(QMutex), sizeof(QMutex), body);
    void *handle = Xelt_Create(nullptr);
    EXPECT_TRUE(trap.hasSprung());
    return handle;
}

class RegistryTimeout : public testing::Test
{
protected:
    void SetUp() override
    {
        m_handle = Xelt_Create(nullptr);
        ASSERT_NE(m_handle, nullptr);
        CoreLog::instance().reset();
    }
    void TearDown() override
    {
        EXPECT_EQ(Xelt_Release(m_handle), 0);
        drainEvents();
    }

    void *m_handle = nullptr;
};

TEST_F(RegistryTimeout, LookUpsGiveUpAfterHalfASecond)
{
    const HostFrame frame = yv12Frame(solidPlanes(8, 8, 90, 128, 128));
    uint32_t nOpenGLES = 77;
    Timed set{};
    Timed get{};
    Timed submit{};
    Timed clear{};
    void *created = createAround([&] {
        Background setting([&] { return setRatioMode(m_handle, 1); });
        Background getting(
            [&] { return Xelt_GetParam(m_handle, XELTCMD_GET_IS_OPENGLES, &nOpenGLES, sizeof nOpenGLES); });
        Background submitting([&] { return show(m_handle, frame); });
        Background clearing([&] {
            Xelt_ClearDraw(m_handle);
            return 0;
        });
        set = setting.join();
        get = getting.join();
        submit = submitting.join();
        clear = clearing.join();
        return true;
    });
    ASSERT_NE(created, nullptr);
    const Milliseconds limit{500};
    EXPECT_EQ(set.nResult, -1);
    EXPECT_TRUE(set.lasted(limit)) << set.duration.count();
    EXPECT_EQ(get.nResult, -1);
    EXPECT_TRUE(get.lasted(limit)) << get.duration.count();
    EXPECT_EQ(nOpenGLES, 77U);
    EXPECT_EQ(submit.nResult, -1);
    EXPECT_TRUE(submit.lasted(limit)) << submit.duration.count();
    EXPECT_TRUE(clear.lasted(limit)) << clear.duration.count();
    // Neither the refused calls nor the clear reached the renderer or the log.
    EXPECT_EQ(CoreLog::instance().count("SetDrawRatioMode"), 0);
    EXPECT_EQ(CoreLog::instance().count("ClearDraw"), 0);
    EXPECT_EQ(CoreLog::instance().count("ShowYuvFrame"), 0);
    EXPECT_TRUE(CoreLog::instance().errors().empty());

    EXPECT_EQ(setRatioMode(m_handle, 1), 0);
    EXPECT_EQ(Xelt_Release(created), 0);
}

TEST_F(RegistryTimeout, SecondCreationGivesUpAfterTwoSeconds)
{
    const int32_t nType = 3;
    void *second = this;
    Timed creation{};
    int nWidgetsBefore = 0;
    int nWidgetsAfter = -1;
    void *first = createAround([&] {
        CoreLog::instance().clear();
        nWidgetsBefore = QApplication::allWidgets().size();
        creation = timed([&] {
            second = Xelt_CreateEx(&nType, sizeof nType);
            return 0;
        });
        nWidgetsAfter = QApplication::allWidgets().size();
        return true;
    });
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_TRUE(creation.lasted(Milliseconds(2000))) << creation.duration.count();
    // Its renderer is gone at once, not with the event loop.
    EXPECT_EQ(nWidgetsAfter, nWidgetsBefore);
    const auto vecRecords = CoreLog::instance().records();
    ASSERT_EQ(vecRecords.size(), 9U);
    EXPECT_EQ(vecRecords[0].sText, "CreateShader CLS_ShaderYuv.");
    EXPECT_TRUE(isErrorRecord(vecRecords, 1, "XeltRender", "CreateShader",
                              "CreateShader failed, type=3. tryLockForWrite time out"));
    EXPECT_TRUE(isErrorRecord(vecRecords, 5, "XeltRender", "Xelt_CreateEx",
                              "[XeltInterface::Xelt_CreateEx] new XeltYUVShader failed, type=3"));
    EXPECT_EQ(Xelt_Release(first), 0);
}

TEST_F(RegistryTimeout, ReleaseWaitsWithoutLimit)
{
    void *released = Xelt_Create(nullptr);
    ASSERT_NE(released, nullptr);
    std::unique_ptr<Background> pReleasing;
    bool blDoneEarly = true;
    void *created = createAround([&] {
        pReleasing = std::make_unique<Background>([released] { return Xelt_Release(released); });
        std::this_thread::sleep_for(Milliseconds(2600)); // longer than every limit
        blDoneEarly = pReleasing->isDone();
        return true;
    });
    ASSERT_NE(created, nullptr);
    EXPECT_FALSE(blDoneEarly);
    EXPECT_EQ(pReleasing->join().nResult, 0);
    EXPECT_EQ(setRatioMode(released, 1), -1);
    EXPECT_EQ(Xelt_Release(created), 0);
}

} // namespace
