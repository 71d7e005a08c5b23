// Memory for a texture object is not to be had.
#include "AllocationTrap.h"
#include "ErrorRecord.h"
#include "InsidePane.h"

#include <optional>

namespace xelttest {
namespace {

// Lets nGood texture objects be made and fails the next one.
class FailingTexture
{
public:
    explicit FailingTexture(int nGood) { arm(nGood); }
    bool hasFailed() const { return m_blFailed; }

private:
    void arm(int nGood)
    {
        m_vecTraps.push_back(std::make_unique<AllocationTrap>(
            AllocationTrap::Form::NoThrow, sizeof(QOpenGLTexture), sizeof(QOpenGLTexture), [this, nGood] {
                m_blFailed = nGood == 0;
                if (!m_blFailed) {
                    arm(nGood - 1);
                }
                return !m_blFailed;
            }));
    }

    std::vector<std::unique_ptr<AllocationTrap>> m_vecTraps;
    bool m_blFailed = false;
};

struct FailureCase
{
    int nType;
    int nGood;
};

class TextureFailureTest : public InsideTest, public ::testing::WithParamInterface<FailureCase>
{
protected:
    void SetUp() override
    {
        InsideTest::SetUp();
        openWindow();
    }

    const char *function() const
    {
        return GetParam().nType == VIDEO_DISPLAY_NV12 ? "CLS_ShaderYuvSubImage::InitGLNV12"
                                                      : "CLS_ShaderYuvSubImage::InitGLYV12";
    }
};

TEST_P(TextureFailureTest, IsLoggedAndLeavesThePaneBlackUntilTheTypeIsSetUpAgain)
{
    const HostFrame shown = frame(GetParam().nType);
    ASSERT_EQ(pane().submit(shown), 0);
    CoreLog::instance().clear();
    {
        const FailingTexture failing(GetParam().nGood);
        EXPECT_TRUE(isBlack(pane().picture()));
        EXPECT_TRUE(failing.hasFailed());
    }
    const std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
    EXPECT_EQ(vecRecords.size(), 4u);
    EXPECT_TRUE(isErrorRecord(vecRecords, 0, "CLS_ShaderYuvSubImage", function(),
                              "new QOpenGLTexture faild,can not malloc memory!"));
    EXPECT_TRUE(pane().m_blGLReady);
    EXPECT_NE(pane().m_pProgram, nullptr);
    EXPECT_TRUE(isBlack(pane().picture())) << "it is not tried again";
    EXPECT_EQ(CoreLog::instance().records().size(), 4u);

    EXPECT_EQ(pane().UnInit(), 0);
    ASSERT_EQ(pane().submit(shown), 0);
    EXPECT_TRUE(shows(shown));
}

INSTANTIATE_TEST_SUITE_P(Planes, TextureFailureTest,
                         ::testing::Values(FailureCase{VIDEO_DISPLAY_YV12, 0},
                                           FailureCase{VIDEO_DISPLAY_YV12, 1},
                                           FailureCase{VIDEO_DISPLAY_YV12, 2},
                                           FailureCase{VIDEO_DISPLAY_NV12, 0},
                                           FailureCase{VIDEO_DISPLAY_NV12, 1}),
                         [](const auto &test) {
                             return std::string(test.param.nType == VIDEO_DISPLAY_NV12 ? "Nv12" : "Yv12") +
                                    "After" + std::to_string(test.param.nGood);
                         });

} // namespace
} // namespace xelttest
