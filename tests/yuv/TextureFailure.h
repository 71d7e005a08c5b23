// Memory for a texture object is not to be had: what either renderer makes of it.
#pragma once

#include "ErrorRecord.h"
#include "InsideTest.h"
#include "SourceLine.h"
#include "TextureTrap.h"

#include <string>

namespace xelttest {

struct TextureFailureCase
{
    int nType;
    int nGood; // texture objects that are made before
};

template <class Fixture>
class TextureFailureTestOf : public Fixture, public ::testing::WithParamInterface<TextureFailureCase>
{
protected:
    void SetUp() override
    {
        Fixture::SetUp();
        this->openWindow();
    }

    static bool isNv12() { return TextureFailureTestOf::GetParam().nType == VIDEO_DISPLAY_NV12; }
    HostFrame shown() const { return Fixture::frame(TextureFailureTestOf::GetParam().nType); }
    HostFrame otherType() const { return Fixture::frame(isNv12() ? VIDEO_DISPLAY_YV12 : VIDEO_DISPLAY_NV12); }

    // Submits the frame, and fails its textures in the paint.
    void failOnce(const std::string &sClass)
    {
        ASSERT_EQ(this->pane().submit(shown()), 0);
        CoreLog::instance().clear();
        {
            const TextureTrap trap(TextureFailureTestOf::GetParam().nGood);
            EXPECT_TRUE(isBlack(this->pane().picture()));
            EXPECT_TRUE(trap.hasFailed());
        }
        const std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
        EXPECT_EQ(vecRecords.size(), 4u);
        EXPECT_TRUE(isErrorRecord(vecRecords, 0, sClass,
                                  sClass + (isNv12() ? "::InitGLNV12" : "::InitGLYV12"),
                                  "new QOpenGLTexture faild,can not malloc memory!"));
        EXPECT_TRUE(leadsToReport(vecRecords.at(2).sText, vecRecords.at(3).sText));
        EXPECT_TRUE(this->pane().m_blGLReady);
        EXPECT_NE(this->pane().m_pProgram, nullptr);
        // Those made so far are kept.
        EXPECT_EQ(this->pane().m_pTexY != nullptr, TextureFailureTestOf::GetParam().nGood > 0);
        EXPECT_EQ(this->pane().m_pTexU != nullptr, TextureFailureTestOf::GetParam().nGood > 1);
        EXPECT_EQ(this->pane().m_pTexV, nullptr);
        EXPECT_TRUE(isBlack(this->pane().picture())) << "it is not tried again";
        EXPECT_EQ(CoreLog::instance().records().size(), 4u);
    }

    void expectBlackUntilTheTypeIsSetUpAgain(const std::string &sClass)
    {
        failOnce(sClass);
        EXPECT_EQ(this->pane().UnInit(), 0);
        ASSERT_EQ(this->pane().submit(shown()), 0);
        EXPECT_TRUE(this->shows(shown()));
    }

    void expectATypeChangeToMendIt(const std::string &sClass)
    {
        failOnce(sClass);
        ASSERT_EQ(this->pane().submit(otherType()), 0);
        EXPECT_TRUE(this->shows(otherType()));
        ASSERT_EQ(this->pane().submit(shown()), 0);
        EXPECT_TRUE(this->shows(shown()));
    }
};

inline const TextureFailureCase k_aTextureFailures[] = {{VIDEO_DISPLAY_YV12, 0},
                                                        {VIDEO_DISPLAY_YV12, 1},
                                                        {VIDEO_DISPLAY_YV12, 2},
                                                        {VIDEO_DISPLAY_NV12, 0},
                                                        {VIDEO_DISPLAY_NV12, 1}};

inline std::string textureFailureName(const ::testing::TestParamInfo<TextureFailureCase> &test)
{
    return std::string(test.param.nType == VIDEO_DISPLAY_NV12 ? "Nv12" : "Yv12") + "After" +
           std::to_string(test.param.nGood);
}

} // namespace xelttest
