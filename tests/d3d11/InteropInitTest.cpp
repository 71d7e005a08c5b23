// CLS_D3D11EGL when its program cannot be made.
#include "ErrorRecord.h"
#include "GlRecorder.h"
#include "InteropObject.h"
#include "RefuseBind.h"
#include "SourceLine.h"

#include <QOpenGLShaderProgram>

#include <string>

namespace {

using namespace xelttest;
using testing::Contains;
using testing::Not;
using testing::StartsWith;

class InteropInit : public InteropObject
{
protected:
    void TearDown() override
    {
        refuseProgramBind() = false;
        InteropObject::TearDown();
    }
};

TEST_F(InteropInit, WithoutAProgramThereIsNoTexture)
{
    ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    setGrey(100);
    CoreLog::instance().clear();
    GlRecorder recorder;
    recorder.m_blSurroundings = true;
    refuseProgramBind() = true;
    EXPECT_EQ(m_pEgl->InitD3D11EGL(), -1);
    const auto vecRecords = CoreLog::instance().records();
    ASSERT_EQ(vecRecords.size(), 5U) << "no line about GL_VERSION and the like";
    EXPECT_EQ(vecRecords[0].sText, "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API Success!");
    // The driver's log of the program follows: nothing, or empty lines.
    const std::string sText = vecRecords[4].sText;
    EXPECT_EQ(QString::fromStdString(sText).trimmed(), "QSGMaterialShader: Shader bind failed:");
    EXPECT_TRUE(isErrorRecord(vecRecords, 1, "CLS_D3D11EGL", "CLS_D3D11EGL::CreateGlslResource", sText));
    EXPECT_TRUE(leadsToReport(vecRecords[3].sText, sText));
    const auto vecCalls = recorder.take();
    EXPECT_THAT(vecCalls, Not(Contains(StartsWith("texture "))));
    EXPECT_THAT(vecCalls, Not(Contains(StartsWith("image "))));
}

TEST_F(InteropInit, TheTexturesReportLeadsToTheCall)
{
    m_pGl->gl().glBindTexture(0xFFFF, 0); // invalid enumerant
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    const auto vecRecords = CoreLog::instance().records();
    ASSERT_GE(vecRecords.size(), 5U);
    const std::string sText = "glGetError() != GL_NO_ERROR glBindTexture err = 1280";
    EXPECT_TRUE(isErrorRecord(vecRecords, 1, "CLS_D3D11EGL", "CLS_D3D11EGL::BindEglTextures", sText));
    EXPECT_TRUE(leadsToReport(vecRecords[3].sText, sText));
}

TEST_F(InteropInit, AnewItWorks)
{
    refuseProgramBind() = true;
    EXPECT_EQ(m_pEgl->InitD3D11EGL(), -1);
    EXPECT_EQ(CoreLog::instance().count("GL_VERSION"), 0);
    refuseProgramBind() = false;
    m_pEgl->DestroyEglResource();
    start();
    EXPECT_EQ(CoreLog::instance().count("CLS_D3D11EGL GL_VERSION: "), 1);
}

} // namespace
