// Every Direct3D and EGL call of the hardware path failing: once, at the third time, always. What is said
// about it, and that the frame after the failures shows and nothing is left over.
#include "InteropFailure.h"

#include <algorithm>
#include <variant>

namespace {

using namespace xelttest;
using softd3d11::Method;
using softegl::Call;

constexpr unsigned k_nFrames = 6;

// How frames are made to need the call again and again.
enum class Drive { Sizes, Clears };
enum class When { First, Third, Always };

struct Fault
{
    std::variant<Method, Call> call;
    Drive drive;
    std::string sWarning;                           // Qt's channel, once each time; empty: none
    std::vector<Report> vecReports;                 // the log, each time
    std::pair<unsigned, unsigned> numbers = {1, 3}; // which call is the first and the third that counts
    unsigned nAlways = k_nFrames;                   // failures in all the frames
    bool blLosesSurface = false;
};

const std::string k_sFail = "(0xffffffff80004005) " + systemText(E_FAIL);
const Report k_noResource{"D3D11VP", "dx::D3D11VP::process", "[D3D11VP::process] ensureResource faild!", 75};

const Fault k_aFaults[] = {
    {Method::DeviceCreateTexture2D,
     Drive::Sizes,
     "DirectX error@548. m_pD3DDevice->CreateTexture2D(&desc, 0, &m_pd3dtex): " + k_sFail,
     {k_noSurface}},
    {Method::TextureQueryInterface,
     Drive::Sizes,
     "DirectX error@550. m_pd3dtex.As(&resource): " + k_sFail,
     {k_noSurface}},
    {Method::ResourceGetSharedHandle,
     Drive::Sizes,
     "DirectX error@552. resource->GetSharedHandle(&share_handle): " + k_sFail,
     {k_noSurface}},
    {Method::DeviceQueryInterface,
     Drive::Clears,
     "D3D11VP error@40. m_dev.As(&m_viddev): " + k_sFail,
     {k_noResource, k_noProcess}},
    {Method::VideoDeviceCreateVideoProcessorEnumerator,
     Drive::Sizes,
     "D3D11VP error@123. m_viddev->CreateVideoProcessorEnumerator(&vpdesc, &m_enum): " + k_sFail,
     {k_noResource, k_noProcess}},
    {Method::EnumeratorCheckVideoProcessorFormat,
     Drive::Sizes,
     "D3D11VP error@128. m_enum->CheckVideoProcessorFormat(format, &flags): " + k_sFail,
     {k_noResource, k_noProcess}},
    {Method::VideoDeviceCreateVideoProcessor,
     Drive::Sizes,
     "D3D11VP error@135. m_viddev->CreateVideoProcessor(m_enum.Get(), 0, &m_vp): " + k_sFail,
     {k_noResource, k_noProcess}},
    {Method::VideoDeviceCreateVideoProcessorOutputView,
     Drive::Sizes,
     "D3D11VP error@140. m_viddev->CreateVideoProcessorOutputView(m_out.Get(), m_enum.Get(), &outputDesc, "
     "&m_outview): " +
         k_sFail,
     {k_noResource, k_noProcess}},
    {Method::VideoDeviceCreateVideoProcessorInputView,
     Drive::Sizes,
     "D3D11VP error@84. m_viddev->CreateVideoProcessorInputView( texture, m_enum.Get(), &inviewDesc, "
     "&inview): " +
         k_sFail,
     {k_noProcess}},
    {Method::ContextQueryInterface,
     Drive::Sizes,
     "D3D11VP error@88. ctx.As(&videoctx): " + k_sFail,
     {k_noProcess}},
    {Method::VideoContextVideoProcessorBlt,
     Drive::Sizes,
     "D3D11VP error@109. videoctx->VideoProcessorBlt(m_vp.Get(), m_outview.Get(), 0, 1, &stream): " + k_sFail,
     {k_noProcess}},
    {Call::BindApi,
     Drive::Clears,
     {},
     {reportOf("InitD3D11EGL",
               "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API fail, eglErr=0x3003!")}},
    {Call::GetCurrentDisplay,
     Drive::Clears,
     {},
     {reportOf("EnsureSurface", "[CLS_EGLBase::CreateEglResource]nullptr == m_eglDisplay! eglErr=12291"),
      k_noSurface}},
    // The first frame asks for three names before the extensions, every other for the extensions alone.
    {Call::QueryString, Drive::Sizes, {}, {k_noExtension, k_noSurface}, {4, 6}},
    {Call::ChooseConfig,
     Drive::Sizes,
     {},
     {reportOf("EnsureSurface", "Failed to create EGL configuration, eglErr=12291"), k_noSurface}},
    {Call::CreatePbufferFromClientBuffer,
     Drive::Sizes,
     "EGL error@12291<<. (m_eglSurface = eglCreatePbufferFromClientBuffer(m_eglDisplay, "
     "EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE, share_handle, egl_cfg, attribs)): 0x3003 ",
     {k_noSurface}},
    // What could not be bound is tried again with the second paint of the frame.
    {Call::BindTexImage,
     Drive::Sizes,
     "EGL error@12291<<. eglBindTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER): 0x3003 ",
     {},
     {1, 3},
     2 * k_nFrames},
    // The first frame has no surface before it.
    {Call::DestroySurface,
     Drive::Sizes,
     {},
     {reportOf("ReleaseEGL", "eglDestroySurface fail!")},
     {1, 3},
     k_nFrames - 1,
     true},
    {Call::MakeCurrent, Drive::Clears, {}, {}},
    // The first clear finds nothing to destroy.
    {Call::ReleaseThread,
     Drive::Clears,
     {},
     {reportOf("DestroyEglResource",
               "[CLS_D3D11EGL::DestroyEglResource] eglReleaseThread fail! eglErr=12291.")},
     {1, 3},
     k_nFrames - 1},
};

std::string faultName(const testing::TestParamInfo<std::tuple<size_t, When>> &info)
{
    constexpr const char *k_apWhen[] = {"First", "Third", "Always"};
    constexpr const char *k_apCalls[] = {"eglBindAPI",         "eglGetCurrentDisplay", "eglQueryString",
                                         "eglChooseConfig",    "eglCreatePbuffer",     "eglBindTexImage",
                                         "eglReleaseTexImage", "eglDestroySurface",    "eglMakeCurrent",
                                         "eglReleaseThread"};
    const Fault &fault = k_aFaults[std::get<0>(info.param)];
    std::string sName;
    if (const Method *pMethod = std::get_if<Method>(&fault.call)) {
        sName = softd3d11::MethodName(*pMethod);
        sName.erase(std::remove(sName.begin(), sName.end(), ':'), sName.end());
    } else {
        sName = k_apCalls[static_cast<size_t>(std::get<Call>(fault.call))];
    }
    return sName + k_apWhen[static_cast<size_t>(std::get<1>(info.param))];
}

class InteropEachFailure : public InteropFailure, public testing::WithParamInterface<std::tuple<size_t, When>>
{
protected:
    static void arm(const Fault &fault, When when)
    {
        const unsigned nNth = when == When::Third   ? fault.numbers.second
                              : when == When::First ? fault.numbers.first
                                                    : 1;
        const unsigned nTimes = when == When::Always ? softegl::kAlways : 1;
        if (const Method *pMethod = std::get_if<Method>(&fault.call)) {
            ASSERT_TRUE(softd3d11::FailCall(*pMethod, E_FAIL, nNth, nTimes));
        } else {
            ASSERT_TRUE(softegl::FailCall(std::get<Call>(fault.call), k_nEglBadAlloc, nNth, nTimes));
        }
    }
    void showFrames(const Fault &fault, When when)
    {
        for (uint32_t nSeed = 0; nSeed < k_nFrames; ++nSeed) {
            if (fault.drive == Drive::Clears) {
                Xelt_ClearDraw(handle());
                paint();
            }
            frame(nSeed);
            if (nSeed == 0 && when == When::Third) {
                EXPECT_TRUE(shows("before"));
            } else {
                paint();
                paint();
            }
        }
    }
};

TEST_P(InteropEachFailure, IsSaidAndTheNextFramesShow)
{
    const Fault &fault = k_aFaults[std::get<0>(GetParam())];
    const When when = std::get<1>(GetParam());
    arm(fault, when);
    showFrames(fault, when);
    softd3d11::ClearFailures();
    softegl::ClearFailures();

    const size_t nFailures = when == When::Always ? fault.nAlways : 1;
    std::vector<Report> vecReports;
    for (size_t i = 0; i < nFailures; ++i) {
        vecReports.insert(vecReports.end(), fault.vecReports.begin(), fault.vecReports.end());
    }
    EXPECT_TRUE(reportsAre(vecReports));
    EXPECT_EQ(warnings(), std::vector<std::string>(fault.sWarning.empty() ? 0 : nFailures, fault.sWarning));
    if (fault.blLosesSurface) {
        m_nLostSurfaces = nFailures;
    }

    CoreLog::instance().clear();
    for (uint32_t nSeed = 20; nSeed < 23; ++nSeed) {
        EXPECT_EQ(frame(nSeed), 0);
        EXPECT_TRUE(shows("recovered"));
    }
    EXPECT_TRUE(reportsAre({}));
    EXPECT_EQ(warnings().size(), 0U);
}

INSTANTIATE_TEST_SUITE_P(All, InteropEachFailure,
                         testing::Combine(testing::Range(size_t{0}, std::size(k_aFaults)),
                                          testing::Values(When::First, When::Third, When::Always)),
                         faultName);

} // namespace
