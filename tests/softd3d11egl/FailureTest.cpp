// Failures on demand, and whom they hit.
#include "EglFixture.h"

#include <dlfcn.h>
#include <ostream>
#include <string>

namespace xelttest {
namespace {

using softegl::Call;

class SoftEglFailureTest : public EglFixture
{
};

struct CallCase
{
    const char *pszName;
    Call call;
    // Makes the call on a surface; whether it succeeded.
    bool (*pMake)(EGLDisplay hDisplay, EGLSurface hSurface);
};

std::ostream &operator<<(std::ostream &out, const CallCase &callCase)
{
    return out << callCase.pszName;
}

class SoftEglEachCallTest : public EglFixture, public ::testing::WithParamInterface<CallCase>
{
protected:
    SoftEglEachCallTest() : m_texture(device(), QSize(4, 4)), m_hSurface(makeSurface(m_texture))
    {
        context().makeTexture();
    }
    ~SoftEglEachCallTest() override
    {
        softegl::ClearFailures();
        EXPECT_TRUE(context().makeCurrent());
        eglReleaseTexImage(display(), m_hSurface, EGL_BACK_BUFFER);
        eglDestroySurface(display(), m_hSurface);
    }

    bool make() { return GetParam().pMake(display(), m_hSurface); }
    void prepare() { softegl::ResetCallCounts(); }
    bool fail(EGLint nError, unsigned nNth, unsigned nTimes)
    {
        return softegl::FailCall(GetParam().call, nError, nNth, nTimes);
    }

private:
    SharedTexture m_texture;
    EGLSurface m_hSurface;
};

TEST_P(SoftEglEachCallTest, FailsOnceWithTheChosenError)
{
    prepare();
    EXPECT_TRUE(fail(EGL_BAD_ALLOC, 1, 1));
    EXPECT_FALSE(make());
    EXPECT_EQ(EGL_BAD_ALLOC, eglGetError());
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
    EXPECT_TRUE(make());
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
    EXPECT_EQ(2U, softegl::CallCount(GetParam().call));
}

TEST_P(SoftEglEachCallTest, FailsAlwaysUntilItIsEnded)
{
    prepare();
    EXPECT_TRUE(fail(EGL_CONTEXT_LOST, 1, softegl::kAlways));
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(make());
        EXPECT_EQ(EGL_CONTEXT_LOST, eglGetError());
    }
    softegl::ClearFailures();
    EXPECT_TRUE(make());
    EXPECT_EQ(6U, softegl::CallCount(GetParam().call));
    softegl::ResetCallCounts();
    EXPECT_EQ(0U, softegl::CallCount(GetParam().call));
}

INSTANTIATE_TEST_SUITE_P(
    Calls, SoftEglEachCallTest,
    ::testing::Values(
        CallCase{"BindApi", Call::BindApi,
                 [](EGLDisplay, EGLSurface) { return eglBindAPI(EGL_OPENGL_ES_API) != EGL_FALSE; }},
        CallCase{"GetCurrentDisplay", Call::GetCurrentDisplay,
                 [](EGLDisplay hDisplay, EGLSurface) { return eglGetCurrentDisplay() == hDisplay; }},
        CallCase{"QueryString", Call::QueryString,
                 [](EGLDisplay hDisplay, EGLSurface) {
                     return eglQueryString(hDisplay, EGL_EXTENSIONS) != nullptr;
                 }},
        CallCase{"ChooseConfig", Call::ChooseConfig,
                 [](EGLDisplay hDisplay, EGLSurface) { return pictureConfig(hDisplay).has_value(); }},
        CallCase{"BindTexImage", Call::BindTexImage,
                 [](EGLDisplay hDisplay, EGLSurface hSurface) {
                     return eglBindTexImage(hDisplay, hSurface, EGL_BACK_BUFFER) != EGL_FALSE;
                 }},
        CallCase{"ReleaseTexImage", Call::ReleaseTexImage,
                 [](EGLDisplay hDisplay, EGLSurface hSurface) {
                     return eglReleaseTexImage(hDisplay, hSurface, EGL_BACK_BUFFER) != EGL_FALSE;
                 }},
        CallCase{"DestroySurface", Call::DestroySurface,
                 [](EGLDisplay hDisplay, EGLSurface hSurface) {
                     return eglDestroySurface(hDisplay, hSurface) != EGL_FALSE;
                 }},
        CallCase{"MakeCurrent", Call::MakeCurrent,
                 [](EGLDisplay hDisplay, EGLSurface) {
                     return eglMakeCurrent(hDisplay, eglGetCurrentSurface(EGL_DRAW),
                                           eglGetCurrentSurface(EGL_READ),
                                           eglGetCurrentContext()) != EGL_FALSE;
                 }},
        CallCase{"ReleaseThread", Call::ReleaseThread,
                 [](EGLDisplay, EGLSurface) { return eglReleaseThread() != EGL_FALSE; }}),
    [](const auto &parameter) { return std::string(parameter.param.pszName); });

TEST_F(SoftEglFailureTest, HitsCreationWithoutMakingASurface)
{
    SharedTexture texture(device(), QSize(4, 4));
    EXPECT_TRUE(softegl::FailCall(Call::CreatePbufferFromClientBuffer, EGL_BAD_ALLOC));
    EXPECT_EQ(EGL_NO_SURFACE, makeSurface(texture));
    EXPECT_EQ(EGL_BAD_ALLOC, eglGetError());
    EXPECT_EQ(0U, softegl::LiveSurfaces());
    const EGLSurface hSurface = makeSurface(texture);
    EXPECT_NE(EGL_NO_SURFACE, hSurface);
    EXPECT_EQ(2U, softegl::CallCount(Call::CreatePbufferFromClientBuffer));
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglFailureTest, LeavesEverythingAsItWas)
{
    SharedTexture texture(device(), QSize(4, 4));
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(softegl::FailCall(Call::BindTexImage, EGL_BAD_ACCESS));
    EXPECT_FALSE(bind(hSurface));
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(bind(hSurface));
    EXPECT_TRUE(softegl::FailCall(Call::ReleaseTexImage, EGL_BAD_ACCESS));
    EXPECT_FALSE(release(hSurface));
    EXPECT_EQ(1U, softegl::BoundTextures());
    EXPECT_TRUE(softegl::FailCall(Call::DestroySurface, EGL_BAD_ACCESS));
    EXPECT_FALSE(destroy(hSurface));
    EXPECT_EQ(1U, softegl::LiveSurfaces());
    expectNextWriteShown(texture, 1, context(), nTexture);
    const EGLContext hContext = eglGetCurrentContext();
    EXPECT_TRUE(softegl::FailCall(Call::MakeCurrent, EGL_BAD_ACCESS));
    EXPECT_EQ(EGL_FALSE, eglMakeCurrent(display(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT));
    EXPECT_EQ(hContext, eglGetCurrentContext());
    EXPECT_TRUE(softegl::FailCall(Call::ReleaseThread, EGL_BAD_ACCESS));
    EXPECT_EQ(EGL_FALSE, eglReleaseThread());
    EXPECT_EQ(hContext, eglGetCurrentContext());
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglFailureTest, BeginsWithTheNthCall)
{
    EXPECT_TRUE(softegl::FailCall(Call::BindApi, EGL_BAD_PARAMETER, 3, 2));
    const bool expected[] = {true, true, false, false, true, true};
    for (const bool blSucceeds : expected) {
        EXPECT_EQ(blSucceeds, eglBindAPI(EGL_OPENGL_ES_API) != EGL_FALSE);
        EXPECT_EQ(blSucceeds ? EGL_SUCCESS : EGL_BAD_PARAMETER, eglGetError());
    }
}

TEST_F(SoftEglFailureTest, ForgetsTheErrorWithTheNextCall)
{
    EXPECT_TRUE(softegl::FailCall(Call::BindApi, EGL_BAD_PARAMETER));
    EXPECT_EQ(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
    EXPECT_NE(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
    EXPECT_EQ(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API + 0x1000));
    EXPECT_EQ(EGL_BAD_PARAMETER, eglGetError()) << "an error of the real library";
    EXPECT_EQ(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API + 0x1000));
    EXPECT_NE(nullptr, eglQueryString(display(), EGL_EXTENSIONS));
    EXPECT_EQ(EGL_SUCCESS, eglGetError()) << "of the latest call";
}

TEST_F(SoftEglFailureTest, ForgetsTheRealLibrarysErrorWithTheNextCall)
{
    SharedTexture texture(device(), QSize(4, 4));
    const EGLSurface hSurface = makeSurface(texture);
    EGLint nValue = 0;
    EXPECT_EQ(EGL_FALSE, eglGetConfigAttrib(display(), config(), EGL_WIDTH, &nValue));
    EXPECT_EQ(EGL_BAD_ATTRIBUTE, eglGetError());
    EXPECT_EQ(EGL_FALSE, eglGetConfigAttrib(display(), config(), EGL_WIDTH, &nValue));
    EXPECT_NE(EGL_FALSE, eglQuerySurface(display(), hSurface, EGL_WIDTH, &nValue));
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglFailureTest, ReplacesAnEarlierRequest)
{
    EXPECT_TRUE(softegl::FailCall(Call::BindApi, EGL_BAD_ALLOC, 1, softegl::kAlways));
    EXPECT_TRUE(softegl::FailCall(Call::BindApi, EGL_BAD_ACCESS, 2));
    EXPECT_NE(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
    EXPECT_EQ(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
    EXPECT_EQ(EGL_BAD_ACCESS, eglGetError());
    EXPECT_NE(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
}

TEST_F(SoftEglFailureTest, RefusesRequestsWithoutSense)
{
    EXPECT_FALSE(softegl::FailCall(Call::Count, EGL_BAD_ALLOC));
    EXPECT_FALSE(softegl::FailCall(Call::BindApi, EGL_SUCCESS));
    EXPECT_FALSE(softegl::FailCall(Call::BindApi, 0));
    EXPECT_FALSE(softegl::FailCall(Call::BindApi, EGL_CONTEXT_LOST + 1));
    EXPECT_FALSE(softegl::FailCall(Call::BindApi, EGL_BAD_ALLOC, 0));
    EXPECT_FALSE(softegl::FailCall(Call::BindApi, EGL_BAD_ALLOC, 1, 0));
    EXPECT_NE(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
    EXPECT_EQ(0U, softegl::CallCount(Call::Count));
}

TEST_F(SoftEglFailureTest, LeavesQtInPeace)
{
    for (const Call call : {Call::BindApi, Call::GetCurrentDisplay, Call::QueryString, Call::ChooseConfig,
                            Call::DestroySurface, Call::MakeCurrent}) {
        EXPECT_TRUE(softegl::FailCall(call, EGL_BAD_ALLOC, 1, softegl::kAlways));
    }
    {
        GlContext other;
        EXPECT_TRUE(other.context().isValid());
        EXPECT_TRUE(context().makeCurrent());
        EXPECT_TRUE(other.makeCurrent());
        other.doneCurrent();
    }
    for (const Call call : {Call::BindApi, Call::GetCurrentDisplay, Call::QueryString, Call::ChooseConfig,
                            Call::DestroySurface, Call::MakeCurrent}) {
        EXPECT_EQ(0U, softegl::CallCount(call)) << unsigned(call);
    }
    EXPECT_EQ(EGL_NO_DISPLAY, eglGetCurrentDisplay()) << "the test's own calls are hit";
}

// A library whose calls to EGL can be made from here.
class Caller
{
public:
    explicit Caller(const char *pszFile) : m_pLibrary(dlopen(pszFile, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(nullptr, m_pLibrary) << dlerror();
    }
    ~Caller() { dlclose(m_pLibrary); }
    Caller(const Caller &) = delete;
    Caller &operator=(const Caller &) = delete;

    bool call() const
    {
        return reinterpret_cast<EGLBoolean (*)()>(dlsym(m_pLibrary, "callEgl"))() != EGL_FALSE;
    }

private:
    void *const m_pLibrary;
};

TEST_F(SoftEglFailureTest, HitsCallsOfTheRenderLibrary)
{
    const Caller caller(XELT_RENDER_CALLER);
    EXPECT_TRUE(softegl::FailCall(Call::BindApi, EGL_BAD_ALLOC));
    EXPECT_FALSE(caller.call());
    EXPECT_EQ(EGL_BAD_ALLOC, eglGetError());
    EXPECT_TRUE(caller.call());
    EXPECT_EQ(2U, softegl::CallCount(Call::BindApi));
}

TEST_F(SoftEglFailureTest, LeavesOtherLibrariesInPeace)
{
    const Caller caller(XELT_OTHER_CALLER);
    EXPECT_TRUE(softegl::FailCall(Call::BindApi, EGL_BAD_ALLOC));
    EXPECT_TRUE(caller.call());
    EXPECT_EQ(0U, softegl::CallCount(Call::BindApi));
    EXPECT_EQ(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
}

} // namespace
} // namespace xelttest
