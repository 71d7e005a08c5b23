// What the video processor says when a call fails, and what it does not touch then.
#include "VpTest.h"

#include "ErrorRecord.h"

#include <gmock/gmock.h>

#include <QString>

namespace {

using namespace xelttest;
using softd3d11::CallCount;
using softd3d11::FailCall;
using softd3d11::Method;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char k_sNoInput[] = "[D3D11VP::process] !texture || !m_out fail!";
constexpr char k_sNoResource[] = "[D3D11VP::process] ensureResource faild!";

// E_FAIL, as the templates print it: base 16 of a negative number has sixteen digits.
const std::string k_sFailText = "(0xffffffff80004005) " + qt_error_string(E_FAIL).toStdString();

// Whether this is all that went to the log.
testing::AssertionResult isOnlyReport(int nLine, const std::string &sText)
{
    const auto vecRecords = CoreLog::instance().records();
    if (vecRecords.size() != 4) {
        return testing::AssertionFailure() << vecRecords.size() << " records";
    }
    const std::string sPosition =
        "file: D3D11VP, func:dx::D3D11VP::process, line: " + std::to_string(nLine) + " ";
    if (vecRecords[2].sText != sPosition) {
        return testing::AssertionFailure() << "the position is " << vecRecords[2];
    }
    return isErrorRecord(vecRecords, 0, "D3D11VP", "dx::D3D11VP::process", sText);
}

struct FailingCall
{
    Method method;
    const char *pszMessage; // without the result
    bool blResource;        // reported by process() as well
};

std::ostream &operator<<(std::ostream &stream, const FailingCall &call)
{
    return stream << softd3d11::MethodName(call.method);
}

class VpFailingCall : public VpTest, public testing::WithParamInterface<FailingCall>
{
};

TEST_P(VpFailingCall, IsWarnedAboutOnceAndTheNextFrameWorks)
{
    for (const bool blFirstFrame : {true, false}) {
        SCOPED_TRACE(blFirstFrame ? "first frame" : "after another size");
        ASSERT_TRUE(FailCall(GetParam().method, E_FAIL));
        EXPECT_FALSE(process());
        EXPECT_THAT(m_messages.take(), ElementsAre(warningLine(GetParam().pszMessage + k_sFailText)));
        if (GetParam().blResource) {
            EXPECT_TRUE(isOnlyReport(75, k_sNoResource));
        } else {
            EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
        }
        CoreLog::instance().clear();
        EXPECT_TRUE(process());
        EXPECT_THAT(m_messages.take(), IsEmpty());
        EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
        use(QSize(32, 32));
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, VpFailingCall,
    testing::Values(
        FailingCall{Method::VideoDeviceCreateVideoProcessorEnumerator,
                    "D3D11VP error@123. m_viddev->CreateVideoProcessorEnumerator(&vpdesc, &m_enum): ", true},
        FailingCall{Method::EnumeratorCheckVideoProcessorFormat,
                    "D3D11VP error@128. m_enum->CheckVideoProcessorFormat(format, &flags): ", true},
        FailingCall{Method::VideoDeviceCreateVideoProcessor,
                    "D3D11VP error@135. m_viddev->CreateVideoProcessor(m_enum.Get(), 0, &m_vp): ", true},
        FailingCall{Method::VideoDeviceCreateVideoProcessorOutputView,
                    "D3D11VP error@140. m_viddev->CreateVideoProcessorOutputView(m_out.Get(), m_enum.Get(), "
                    "&outputDesc, &m_outview): ",
                    true},
        FailingCall{Method::VideoDeviceCreateVideoProcessorInputView,
                    "D3D11VP error@84. m_viddev->CreateVideoProcessorInputView( texture, m_enum.Get(), "
                    "&inviewDesc, &inview): ",
                    false},
        FailingCall{Method::ContextQueryInterface, "D3D11VP error@88. ctx.As(&videoctx): ", false},
        FailingCall{Method::VideoContextVideoProcessorBlt,
                    "D3D11VP error@109. videoctx->VideoProcessorBlt(m_vp.Get(), m_outview.Get(), 0, 1, "
                    "&stream): ",
                    false}),
    [](const testing::TestParamInfo<FailingCall> &call) {
        std::string sName;
        for (const char c : std::string(softd3d11::MethodName(call.param.method))) {
            if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
                sName += c;
            }
        }
        return sName;
    });

class VpMessage : public VpTest
{
};

TEST_F(VpMessage, ADeviceWithoutVideoIsWarnedAboutAndRefuses)
{
    ASSERT_TRUE(FailCall(Method::DeviceQueryInterface, E_NOINTERFACE));
    makeVp();
    EXPECT_THAT(m_messages.take(),
                ElementsAre(warningLine("D3D11VP error@40. m_dev.As(&m_viddev): (0xffffffff80004002) " +
                                        qt_error_string(E_NOINTERFACE).toStdString())));
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
    EXPECT_FALSE(m_vp->m_viddev);
    m_vp->setOutputTexture(m_target.Get());
    EXPECT_FALSE(m_vp->ensureResource(64, 48, DXGI_FORMAT_NV12));
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(process());
        EXPECT_TRUE(isOnlyReport(75, k_sNoResource));
        CoreLog::instance().clear();
    }
    EXPECT_THAT(m_messages.take(), IsEmpty());
    EXPECT_EQ(VpCalls::now(), (VpCalls{}));
}

TEST_F(VpMessage, AnInputFormatThatIsNotSupported)
{
    const ComPtr<ID3D11Texture2D> bgra = makeTarget(*m_device.Get(), QSize(64, 48));
    EXPECT_FALSE(m_vp->process(bgra.Get(), 0));
    EXPECT_THAT(m_messages.take(),
                ElementsAre(warningLine("unsupported input format for d3d11 video processor: 87")));
    EXPECT_TRUE(isOnlyReport(75, k_sNoResource));
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 1, 0, 0, 0, 0}));
    EXPECT_TRUE(m_vp->m_enum);
    EXPECT_FALSE(m_vp->m_vp);
    EXPECT_EQ(m_vp->m_width, 0U);
    EXPECT_TRUE(process());
}

TEST_F(VpMessage, NoTextureTouchesNothing)
{
    EXPECT_FALSE(m_vp->process(nullptr, 0));
    EXPECT_TRUE(isOnlyReport(68, k_sNoInput));
    EXPECT_EQ(CallCount(Method::TextureGetDesc), 0U);
    EXPECT_EQ(VpCalls::now(), (VpCalls{}));
    EXPECT_THAT(m_messages.take(), IsEmpty());
}

TEST_F(VpMessage, NoOutputTouchesNothing)
{
    makeVp();
    softd3d11::ResetCallCounts();
    EXPECT_FALSE(process());
    EXPECT_TRUE(isOnlyReport(68, k_sNoInput));
    EXPECT_EQ(CallCount(Method::TextureGetDesc), 0U);
    EXPECT_EQ(VpCalls::now(), (VpCalls{}));
    // The same once the output is taken away again.
    CoreLog::instance().clear();
    m_vp->setOutputTexture(m_target.Get());
    EXPECT_TRUE(process());
    m_vp->setOutputTexture(nullptr);
    EXPECT_FALSE(process());
    EXPECT_TRUE(isOnlyReport(68, k_sNoInput));
}

TEST_F(VpMessage, ASliceThatIsNotThereFails)
{
    EXPECT_FALSE(process(16));
    EXPECT_THAT(m_messages.take(),
                ElementsAre(warningLine("D3D11VP error@84. m_viddev->CreateVideoProcessorInputView( texture, "
                                        "m_enum.Get(), &inviewDesc, &inview): (0xffffffff80070057) " +
                                        qt_error_string(E_INVALIDARG).toStdString())));
    EXPECT_TRUE(process(15));
}

} // namespace
