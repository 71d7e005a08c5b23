// CLS_D3D11EGL when its program cannot be made.
#include "ErrorRecord.h"
#include "GlRecorder.h"
#include "InteropObject.h"

#include <QOpenGLShaderProgram>

#include <dlfcn.h>

#include <cstdlib>
#include <string>

namespace {

bool g_blRefuseBind = false;

} // namespace

// The executable's definition comes before the one in Qt's library.
bool QOpenGLShaderProgram::bind()
{
    using Bind = bool (*)(QOpenGLShaderProgram *);
    static const auto pfnBind = reinterpret_cast<Bind>(dlsym(RTLD_NEXT, "_ZN20QOpenGLShaderProgram4bindEv"));
    if (pfnBind == nullptr) {
        std::abort();
    }
    return !g_blRefuseBind && pfnBind(this);
}

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
        g_blRefuseBind = false;
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
    g_blRefuseBind = true;
    EXPECT_EQ(m_pEgl->InitD3D11EGL(), -1);
    const auto vecRecords = CoreLog::instance().records();
    ASSERT_EQ(vecRecords.size(), 5U) << "no line about GL_VERSION and the like";
    EXPECT_EQ(vecRecords[0].sText, "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API Success!");
    EXPECT_TRUE(isErrorRecord(vecRecords, 1, "CLS_D3D11EGL", "CLS_D3D11EGL::CreateGlslResource",
                              "QSGMaterialShader: Shader bind failed:"));
    const auto vecCalls = recorder.take();
    EXPECT_THAT(vecCalls, Not(Contains(StartsWith("texture "))));
    EXPECT_THAT(vecCalls, Not(Contains(StartsWith("image "))));
}

TEST_F(InteropInit, AnewItWorks)
{
    g_blRefuseBind = true;
    EXPECT_EQ(m_pEgl->InitD3D11EGL(), -1);
    EXPECT_EQ(CoreLog::instance().count("GL_VERSION"), 0);
    g_blRefuseBind = false;
    m_pEgl->DestroyEglResource();
    start();
    EXPECT_EQ(CoreLog::instance().count("CLS_D3D11EGL GL_VERSION: "), 1);
}

} // namespace
