// What CLS_D3D11EGL asks of EGL, in which order, and the texture that it shares with it.
#include "EglArguments.h"
#include "ErrorRecord.h"
#include "GlRecorder.h"
#include "InteropObject.h"
#include "QtMessages.h"
#include "SourceLine.h"

#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace xelttest;
using softd3d11::Method;
using softegl::Call;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

constexpr int32_t k_nEglBadAlloc = 0x3003;

class InteropEgl : public InteropObject
{
protected:
    void SetUp() override
    {
        InteropObject::SetUp();
        EglArguments::last() = {};
    }
    void TearDown() override
    {
        softegl::ClearFailures();
        softd3d11::ClearFailures();
        softegl::HideExtension(false);
        EglArguments::last() = {};
        InteropObject::TearDown();
    }

    // The calls since the last time, in order.
    static std::vector<std::string> takeCalls()
    {
        static const char *const k_apNames[] = {
            "eglBindAPI",     "eglGetCurrentDisplay", "eglQueryString",     "eglChooseConfig",
            "eglCreate",      "eglBindTexImage",      "eglReleaseTexImage", "eglDestroySurface",
            "eglMakeCurrent", "eglReleaseThread"};
        static_assert(std::size(k_apNames) == static_cast<size_t>(Call::Count));
        std::vector<Call> vecCalls(softegl::CallsInOrder(nullptr, 0));
        softegl::CallsInOrder(vecCalls.data(), vecCalls.size());
        std::vector<std::string> vecNames;
        for (const Call call : vecCalls) {
            vecNames.emplace_back(k_apNames[static_cast<size_t>(call)]);
        }
        softegl::ResetCallCounts();
        return vecNames;
    }
    // The size of the next surface; the texture stays.
    void setSize(int nWidth, int nHeight)
    {
        VideoFrameDesc desc = m_textures->frame(0);
        desc.pD3D11Texture = nullptr;
        desc.iWidth = nWidth;
        desc.iHeight = nHeight;
        m_pEgl->SetFrame(&desc, sizeof desc);
    }
    void startAndForget()
    {
        start();
        takeCalls();
    }
    // The shared texture as EGL gets to see it.
    ComPtr<ID3D11Texture2D> sharedTexture()
    {
        ComPtr<ID3D11Texture2D> texture;
        EXPECT_EQ(m_device->OpenSharedResource(EglArguments::last().buffer, IID_ID3D11Texture2D,
                                               texture.ReleaseAndGetVoidAddressOf()),
                  S_OK);
        return texture;
    }
};

TEST_F(InteropEgl, TheCallsOfTheFirstPictures)
{
    ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    setGrey(100);
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_THAT(takeCalls(), ElementsAre("eglBindAPI"));
    EXPECT_EQ(render(), 0);
    EXPECT_THAT(takeCalls(),
                ElementsAre("eglGetCurrentDisplay", "eglQueryString", "eglQueryString", "eglQueryString",
                            "eglQueryString", "eglChooseConfig", "eglCreate", "eglBindTexImage"));
    EXPECT_EQ(render(), 0);
    setGrey(50);
    EXPECT_EQ(render(), 0);
    EXPECT_THAT(takeCalls(), IsEmpty());
}

TEST_F(InteropEgl, AnotherSizeDropsTheOldSurfaceBeforeTheNewOneIsMade)
{
    startAndForget();
    setSize(32, 24);
    EXPECT_EQ(render(), 0);
    EXPECT_THAT(takeCalls(),
                ElementsAre("eglQueryString", "eglChooseConfig", "eglReleaseTexImage", "eglDestroySurface",
                            "eglCreate", "eglReleaseTexImage", "eglBindTexImage"));
}

TEST_F(InteropEgl, AFailedConversionDropsTheSurface)
{
    startAndForget();
    ASSERT_TRUE(softd3d11::FailCall(Method::VideoContextVideoProcessorBlt, E_FAIL));
    EXPECT_EQ(render(), -1);
    EXPECT_THAT(takeCalls(), ElementsAre("eglReleaseTexImage", "eglDestroySurface"));
    setGrey(30);
    EXPECT_EQ(render(), 0);
    EXPECT_THAT(takeCalls(), ElementsAre("eglQueryString", "eglChooseConfig", "eglCreate",
                                         "eglReleaseTexImage", "eglBindTexImage"));
}

TEST_F(InteropEgl, TheEnd)
{
    startAndForget();
    m_pEgl->DestroyEglResource();
    EXPECT_THAT(takeCalls(),
                ElementsAre("eglMakeCurrent", "eglReleaseThread", "eglReleaseTexImage", "eglDestroySurface"));
    m_pEgl->DestroyEglResource(); // the display is still known
    EXPECT_THAT(takeCalls(), ElementsAre("eglMakeCurrent", "eglReleaseThread"));
}

TEST_F(InteropEgl, TheEndOfAContext)
{
    startAndForget();
    m_pEgl->ReleaseContextObjects();
    EXPECT_THAT(takeCalls(), ElementsAre("eglReleaseTexImage", "eglDestroySurface"));
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_THAT(takeCalls(), ElementsAre("eglBindAPI", "eglQueryString", "eglChooseConfig", "eglCreate",
                                         "eglBindTexImage"))
        << "nothing was bound in this context before";
}

// Steps that fail with another size: how far it gets, and that everything ends with the old surface dropped.
TEST_F(InteropEgl, AFailingStepIsTheLastOne)
{
    const auto failing = [this](Call call) {
        setGrey(80);
        EXPECT_EQ(render(), 0);
        takeCalls();
        EXPECT_TRUE(softegl::FailCall(call, k_nEglBadAlloc));
        setSize(32, 24);
        EXPECT_EQ(render(), -1);
        return takeCalls();
    };
    startAndForget();
    EXPECT_THAT(failing(Call::QueryString),
                ElementsAre("eglQueryString", "eglReleaseTexImage", "eglDestroySurface"));
    EXPECT_THAT(failing(Call::ChooseConfig),
                ElementsAre("eglQueryString", "eglChooseConfig", "eglReleaseTexImage", "eglDestroySurface"));
    // The last two are for the text of the error.
    EXPECT_THAT(failing(Call::CreatePbufferFromClientBuffer),
                ElementsAre("eglQueryString", "eglChooseConfig", "eglReleaseTexImage", "eglDestroySurface",
                            "eglCreate", "eglGetCurrentDisplay", "eglQueryString"));
}

// A device has it, the context has not: said once, and the frame fails as without a surface.
TEST_F(InteropEgl, ASizeBeyondTheContextsTexturesReachesNeitherEglNorGl)
{
    startAndForget();
    GlRecorder recorder;
    ASSERT_TRUE(softd3d11::FailCall(Method::DeviceCreateTexture2D, E_FAIL));
    setSize(32, 24);
    ASSERT_EQ(render(), -1);
    const size_t nLeft = liveObjects(m_device.Get()); // without a surface
    recorder.m_nMaxTextureSize = 40;
    recorder.m_blSurroundings = true;
    const std::string sFail = "[CLS_D3D11EGL::Map] EnsureSurface fail!";
    for (const QSize &size : {QSize(41, 24), QSize(24, 41)}) {
        const std::string sTooLarge = "[CLS_D3D11EGL::EnsureSurface] frame " + std::to_string(size.width()) +
                                      " x " + std::to_string(size.height()) +
                                      " is larger than the context's textures, 40";
        for (int i = 0; i < 3; ++i) {
            setGrey(80);
            setSize(size.width(), size.height());
            CoreLog::instance().clear();
            takeCalls();
            recorder.take();
            EXPECT_EQ(render(), -1);
            if (i == 0) {
                const auto vecRecords = CoreLog::instance().records();
                ASSERT_EQ(vecRecords.size(), 8U);
                EXPECT_TRUE(
                    isErrorRecord(vecRecords, 0, "CLS_D3D11EGL", "CLS_D3D11EGL::EnsureSurface", sTooLarge));
                EXPECT_TRUE(leadsToReport(vecRecords[2].sText, sTooLarge));
                EXPECT_TRUE(isErrorRecord(vecRecords, 4, "CLS_D3D11EGL", "CLS_D3D11EGL::Map", sFail));
            } else {
                EXPECT_THAT(CoreLog::instance().errors(), ElementsAre(sFail)) << "said already";
            }
            EXPECT_THAT(takeCalls(), Not(Contains("eglCreate")));
            EXPECT_THAT(recorder.take(), Not(Contains(HasSubstr("image "))));
            EXPECT_EQ(softegl::LiveSurfaces(), 0U);
            EXPECT_EQ(liveObjects(m_device.Get()), nLeft) << "the texture is let go of";
        }
    }
    setGrey(90);
    setSize(40, 24);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(softegl::LiveSurfaces(), 1U);
    CoreLog::instance().clear();
    setSize(24, 41);
    EXPECT_EQ(render(), -1);
    EXPECT_EQ(CoreLog::instance().errors().size(), 2U) << "another size came between";
}

// What is said while the surfaces are counted.
class SurfaceWatch
{
public:
    SurfaceWatch()
    {
        s_vecSaid.clear();
        m_pfnBefore =
            qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &sText) {
                if (type == QtWarningMsg) {
                    s_vecSaid.emplace_back(sText.toStdString(), softegl::LiveSurfaces());
                }
            });
        CoreLog::instance().setHook([](const CoreLogRecord &record) {
            if (record.nKind == CORELOG_ERR_MSG_UNLOCK) {
                s_vecSaid.emplace_back(record.sText, softegl::LiveSurfaces());
            }
        });
    }
    ~SurfaceWatch()
    {
        CoreLog::instance().setHook(nullptr);
        qInstallMessageHandler(m_pfnBefore);
    }
    SurfaceWatch(const SurfaceWatch &) = delete;
    SurfaceWatch &operator=(const SurfaceWatch &) = delete;

    static inline std::vector<std::pair<std::string, size_t>> s_vecSaid;

private:
    QtMessageHandler m_pfnBefore;
};

TEST_F(InteropEgl, TheOldSurfaceStaysUntilTheNewTextureIsThere)
{
    start();
    for (const auto &[method, pszNumber] : {std::pair{Method::DeviceCreateTexture2D, "error@548"},
                                            std::pair{Method::TextureQueryInterface, "error@550"},
                                            std::pair{Method::ResourceGetSharedHandle, "error@552"}}) {
        setGrey(60);
        EXPECT_EQ(render(), 0);
        setSize(32, 24);
        takeCalls();
        ASSERT_TRUE(softd3d11::FailCall(method, E_FAIL));
        const SurfaceWatch watch;
        EXPECT_EQ(render(), -1);
        EXPECT_THAT(
            SurfaceWatch::s_vecSaid,
            ElementsAre(Pair(HasSubstr(pszNumber), 1U), Pair("[CLS_D3D11EGL::Map] EnsureSurface fail!", 0U)));
        EXPECT_THAT(takeCalls(), ElementsAre("eglQueryString", "eglChooseConfig", "eglReleaseTexImage",
                                             "eglDestroySurface"));
    }
    setGrey(60);
    EXPECT_EQ(render(), 0);
    setSize(32, 24);
    ASSERT_TRUE(softegl::FailCall(Call::CreatePbufferFromClientBuffer, k_nEglBadAlloc));
    const SurfaceWatch watch;
    EXPECT_EQ(render(), -1);
    EXPECT_THAT(SurfaceWatch::s_vecSaid, ElementsAre(Pair(HasSubstr("eglCreatePbufferFromClientBuffer"), 0U),
                                                     Pair("[CLS_D3D11EGL::Map] EnsureSurface fail!", 0U)));
}

TEST_F(InteropEgl, TheConfigurationThatIsAskedFor)
{
    start();
    const EglArguments &arguments = EglArguments::last();
    EXPECT_THAT(arguments.vecConfigAttributes,
                ElementsAre(EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_ALPHA_SIZE, 8,
                            EGL_BIND_TO_TEXTURE_RGBA, EGL_TRUE, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_NONE));
    EXPECT_EQ(arguments.nConfigs, 1);
    EXPECT_NE(arguments.chosen, nullptr);
    EXPECT_EQ(arguments.used, arguments.chosen);
}

TEST_F(InteropEgl, TheNumberOfConfigurationsIsNotLookedAt)
{
    EglArguments::last().blSayNoConfigs = true;
    start();
    EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
    EXPECT_EQ(softegl::LiveSurfaces(), 1U);
}

TEST_F(InteropEgl, TheSurfaceThatIsAskedFor)
{
    start();
    const EglArguments &arguments = EglArguments::last();
    EXPECT_EQ(arguments.nBufferType, EGLenum(EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE));
    EXPECT_THAT(arguments.vecSurfaceAttributes,
                ElementsAre(EGL_WIDTH, 64, EGL_HEIGHT, 48, EGL_TEXTURE_FORMAT, EGL_TEXTURE_RGBA,
                            EGL_TEXTURE_TARGET, EGL_TEXTURE_2D, EGL_NONE));
    setSize(32, 24);
    EXPECT_EQ(render(), 0);
    EXPECT_THAT(arguments.vecSurfaceAttributes,
                ElementsAre(EGL_WIDTH, 32, EGL_HEIGHT, 24, EGL_TEXTURE_FORMAT, EGL_TEXTURE_RGBA,
                            EGL_TEXTURE_TARGET, EGL_TEXTURE_2D, EGL_NONE));
}

TEST_F(InteropEgl, TheTextureThatIsShared)
{
    start();
    for (const QSize &size : {k_size, QSize(32, 24)}) {
        setSize(size.width(), size.height());
        EXPECT_EQ(render(), 0);
        const ComPtr<ID3D11Texture2D> texture = sharedTexture();
        ASSERT_TRUE(texture);
        D3D11_TEXTURE2D_DESC desc{};
        texture->GetDesc(&desc);
        EXPECT_EQ(desc.Width, static_cast<UINT>(size.width()));
        EXPECT_EQ(desc.Height, static_cast<UINT>(size.height()));
        EXPECT_EQ(desc.MipLevels, 1U);
        EXPECT_EQ(desc.ArraySize, 1U);
        EXPECT_EQ(desc.Format, DXGI_FORMAT_B8G8R8A8_UNORM);
        EXPECT_EQ(desc.SampleDesc.Count, 1U);
        EXPECT_EQ(desc.SampleDesc.Quality, 0U);
        EXPECT_EQ(desc.Usage, D3D11_USAGE_DEFAULT);
        EXPECT_EQ(desc.BindFlags, UINT{D3D11_BIND_RENDER_TARGET} | UINT{D3D11_BIND_SHADER_RESOURCE});
        EXPECT_EQ(desc.CPUAccessFlags, 0U);
        EXPECT_EQ(desc.MiscFlags, UINT{D3D11_RESOURCE_MISC_SHARED});
        EXPECT_NEAR(readTarget(*m_device.Get(), *texture.Get())[0], 100, 1) << "the picture goes into it";
    }
}

// The list that the tests above read.
TEST_F(InteropEgl, TheFirstCallsAreKeptAndNoMore)
{
    platform::egl::QueryString(EGL_NO_DISPLAY, EGL_VERSION);
    for (size_t i = 1; i < softegl::kCallsKept + 10; ++i) {
        platform::egl::GetCurrentDisplay();
    }
    Call aCalls[3] = {Call::Count, Call::Count, Call::Count};
    EXPECT_EQ(softegl::CallsInOrder(aCalls, 2), softegl::kCallsKept);
    EXPECT_THAT(aCalls, ElementsAre(Call::QueryString, Call::GetCurrentDisplay, Call::Count));
    EXPECT_EQ(takeCalls().size(), softegl::kCallsKept);
    EXPECT_EQ(softegl::CallsInOrder(aCalls, 3), 0U);
    EXPECT_EQ(aCalls[0], Call::QueryString) << "nothing was written";
}

} // namespace
