// XeltRender.hpp against a stand-in for the seven functions: which command, which record, how many bytes.

#include <XeltRender.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

struct Call
{
    std::string function;
    void *pHandle = nullptr;
    std::uint32_t nCommand = 0;
    const void *pData = nullptr;
    std::uint32_t nSize = 0;
    Bytes bytes;
};

struct StandIn
{
    std::vector<Call> calls;
    std::int32_t nResult = 0;
    Bytes answer;
    void *pNextHandle = nullptr;
};

StandIn g_standIn;
int g_aPanes[2];

void record(const char *pFunction, void *pHandle, std::uint32_t nCommand, const void *pData,
            std::uint32_t nSize, std::size_t nReadable)
{
    Call call;
    call.function = pFunction;
    call.pHandle = pHandle;
    call.nCommand = nCommand;
    call.pData = pData;
    call.nSize = nSize;
    const auto *pBytes = static_cast<const unsigned char *>(pData);
    call.bytes.assign(pBytes, pBytes + nReadable);
    g_standIn.calls.push_back(std::move(call));
}

} // namespace

extern "C" {

void *Xelt_Create(void *layout)
{
    record("Create", nullptr, 0, layout, 0, 0);
    return g_standIn.pNextHandle;
}

void *Xelt_CreateEx(const void *param, std::int32_t len)
{
    const auto nLength = static_cast<std::uint32_t>(len);
    record("CreateEx", nullptr, 0, param, nLength, nLength);
    return g_standIn.pNextHandle;
}

std::int32_t Xelt_Release(void *handle)
{
    record("Release", handle, 0, nullptr, 0, 0);
    return 0;
}

std::int32_t Xelt_SetParam(void *handle, std::uint32_t cmd, const void *data, std::uint32_t size)
{
    // The label parent is not memory to read.
    record("SetParam", handle, cmd, data, size, cmd == XELTCMD_SET_LABEL_PARENT ? 0 : size);
    return g_standIn.nResult;
}

std::int32_t Xelt_GetParam(void *handle, std::uint32_t cmd, void *data, std::uint32_t size)
{
    record("GetParam", handle, cmd, data, size, 0);
    std::copy_n(g_standIn.answer.data(), std::min<std::size_t>(size, g_standIn.answer.size()),
                static_cast<unsigned char *>(data));
    return g_standIn.nResult;
}

std::int32_t Xelt_ShowYuvFrame(void *handle, const void *frame, std::uint32_t size)
{
    record("ShowYuvFrame", handle, 0, frame, size, size);
    return g_standIn.nResult;
}

void Xelt_ClearDraw(void *handle)
{
    record("ClearDraw", handle, 0, nullptr, 0, 0);
}
}

namespace {

class Wrapper : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_standIn = StandIn{};
        g_standIn.pNextHandle = &g_aPanes[0];
    }

    static const Call &last() { return g_standIn.calls.back(); }

    template <typename Value> static Bytes bytesOf(const Value &value)
    {
        const auto *pBytes = reinterpret_cast<const unsigned char *>(&value);
        return Bytes(pBytes, pBytes + sizeof(Value));
    }

    // The last call passed one whole record of this type, equal to this one.
    template <typename Record> static void expectSet(std::uint32_t nCommand, const Record &record)
    {
        EXPECT_EQ(last().function, "SetParam");
        EXPECT_EQ(last().pHandle, &g_aPanes[0]);
        EXPECT_EQ(last().nCommand, nCommand);
        EXPECT_EQ(last().bytes, bytesOf(record));
    }

    template <typename Value> static void answer(const Value &value) { g_standIn.answer = bytesOf(value); }

    static std::vector<void *> released()
    {
        std::vector<void *> handles;
        for (const Call &call : g_standIn.calls) {
            if (call.function == "Release") {
                handles.push_back(call.pHandle);
            }
        }
        return handles;
    }
};

using Handles = std::vector<void *>;

static_assert(!std::is_copy_constructible_v<xelt::Renderer> && !std::is_copy_assignable_v<xelt::Renderer>);
static_assert(std::is_nothrow_move_constructible_v<xelt::Renderer>);
static_assert(std::is_nothrow_move_assignable_v<xelt::Renderer>);

TEST_F(Wrapper, CreatesInALayout)
{
    int layout = 0;
    const auto pane = xelt::Renderer::create(reinterpret_cast<QLayout *>(&layout));
    EXPECT_EQ(last().function, "Create");
    EXPECT_EQ(last().pData, &layout);
    EXPECT_TRUE(pane);
    EXPECT_EQ(pane.handle(), &g_aPanes[0]);
    EXPECT_EQ(static_cast<void *>(pane.widget()), &g_aPanes[0]);
}

TEST_F(Wrapper, CreatesByTypeWithFourBytes)
{
    const auto pane = xelt::Renderer::create(xelt::RendererType::YuvSubImage);
    EXPECT_EQ(last().function, "CreateEx");
    EXPECT_EQ(last().bytes, (Bytes{7, 0, 0, 0}));
    EXPECT_TRUE(pane);
}

TEST_F(Wrapper, FailedCreationIsEmptyAndReleasesNothing)
{
    g_standIn.pNextHandle = nullptr;
    {
        const auto pane = xelt::Renderer::create();
        EXPECT_FALSE(pane);
        EXPECT_EQ(pane.widget(), nullptr);
    }
    EXPECT_EQ(released(), Handles{});
}

TEST_F(Wrapper, ReleasesOnceWhenDestroyed)
{
    {
        auto pane = xelt::Renderer::create();
        EXPECT_EQ(released(), Handles{});
    }
    EXPECT_EQ(released(), Handles{&g_aPanes[0]});
}

TEST_F(Wrapper, ReleasesOnceWhenAsked)
{
    {
        auto pane = xelt::Renderer::create();
        pane.release();
        EXPECT_FALSE(pane);
        EXPECT_EQ(released(), Handles{&g_aPanes[0]});
        pane.release();
    }
    EXPECT_EQ(released(), Handles{&g_aPanes[0]});
}

TEST_F(Wrapper, MovesTheOneHandle)
{
    {
        auto first = xelt::Renderer::create();
        auto second = std::move(first);
        EXPECT_EQ(second.handle(), &g_aPanes[0]);
        EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move): the moved-from state is what is tested
        EXPECT_EQ(released(), Handles{});
    }
    EXPECT_EQ(released(), Handles{&g_aPanes[0]});
}

TEST_F(Wrapper, AssignmentReleasesTheOldRenderer)
{
    auto pane = xelt::Renderer::create();
    g_standIn.pNextHandle = &g_aPanes[1];
    pane = xelt::Renderer::create();
    EXPECT_EQ(released(), Handles{&g_aPanes[0]});
    EXPECT_EQ(pane.handle(), &g_aPanes[1]);
}

TEST_F(Wrapper, AssignmentToItselfKeepsTheRenderer)
{
    auto pane = xelt::Renderer::create();
    auto &same = pane;
    pane = std::move(same);
    EXPECT_EQ(released(), Handles{});
    EXPECT_EQ(pane.handle(), &g_aPanes[0]);
}

TEST_F(Wrapper, SettersPassTheirWholeRecord)
{
    const auto pane = xelt::Renderer::create();
    int user = 0;
    const XeltDrawInfoCallbackPara callback{
        [](void *, const XeltDrawInfoRequest *, std::int32_t, void *) -> std::int32_t { return 0; }, &user};
    EXPECT_TRUE(pane.setDrawInfoCallback(callback));
    expectSet(0, callback);
    EXPECT_TRUE(pane.setEZoomArea({0.125, 0.25, 0.5, 0.75}));
    expectSet(1, XeltEZoomArea{0.125, 0.25, 0.5, 0.75});
    EXPECT_TRUE(pane.setStopDraw({1}));
    expectSet(4, XeltStopDrawPara{1});
    EXPECT_TRUE(pane.setRotate({1, 270, 2}));
    expectSet(5, XeltRotatePara{1, 270, 2});
    EXPECT_TRUE(pane.setDrawRatioMode({1}));
    expectSet(6, XeltDrawRatioPara{1});
    EXPECT_TRUE(pane.setDrawDstRect({1, 2, 3, 4}));
    expectSet(7, XeltDrawDstRect{1, 2, 3, 4});
}

TEST_F(Wrapper, LabelParentIsThePointerItself)
{
    int parent = 0;
    const auto pane = xelt::Renderer::create();
    EXPECT_TRUE(pane.setLabelParent(reinterpret_cast<QWidget *>(&parent)));
    EXPECT_EQ(last().nCommand, 2U);
    EXPECT_EQ(last().pData, &parent);
    EXPECT_GE(last().nSize, 1U);
}

TEST_F(Wrapper, DeviceIsPassedByItsAddress)
{
    int device = 0;
    const auto pane = xelt::Renderer::create();
    auto *pDevice = reinterpret_cast<ID3D11Device *>(&device);
    EXPECT_TRUE(pane.setD3D11Device(pDevice));
    expectSet(3, static_cast<void *>(pDevice));
    EXPECT_TRUE(pane.setD3D11Device(nullptr));
    expectSet(3, static_cast<void *>(nullptr));
}

TEST_F(Wrapper, RefusalsAreReported)
{
    const auto pane = xelt::Renderer::create();
    g_standIn.nResult = -1;
    EXPECT_FALSE(pane.setDrawDstRect({}));
    EXPECT_FALSE(pane.setLabelParent(nullptr));
    EXPECT_FALSE(pane.showFrame({}));
    EXPECT_FALSE(pane.winId());
    EXPECT_FALSE(pane.widgetRect());
    EXPECT_FALSE(pane.isOpenGLES());
}

TEST_F(Wrapper, GettersReadTheirWholeResult)
{
    const auto pane = xelt::Renderer::create();
    answer(std::uint64_t{0x123456789ABCDEF0});
    EXPECT_EQ(pane.winId(), 0x123456789ABCDEF0U);
    EXPECT_EQ(last().nCommand, 0U);
    EXPECT_EQ(last().nSize, 8U);

    answer(XeltWidgetRect{1, 2, 3, 4});
    const auto rect = pane.widgetRect();
    EXPECT_EQ(last().nCommand, 1U);
    EXPECT_EQ(last().nSize, 16U);
    ASSERT_TRUE(rect);
    EXPECT_EQ(rect->top, 1);
    EXPECT_EQ(rect->left, 2);
    EXPECT_EQ(rect->right, 3);
    EXPECT_EQ(rect->bottom, 4);
}

TEST_F(Wrapper, OpenGLESIsAnsweredAsABoolean)
{
    const auto pane = xelt::Renderer::create();
    answer(std::uint32_t{1});
    EXPECT_EQ(pane.isOpenGLES(), std::optional<bool>(true));
    EXPECT_EQ(last().nCommand, 3U);
    EXPECT_EQ(last().nSize, 4U);
    answer(std::uint32_t{0});
    EXPECT_EQ(pane.isOpenGLES(), std::optional<bool>(false));
}

TEST_F(Wrapper, FramesArePassedWhole)
{
    const auto pane = xelt::Renderer::create();
    VideoFrameDesc frame{};
    frame.iWidth = 1920;
    frame.nTextureSlice = 7;
    EXPECT_TRUE(pane.showFrame(frame));
    EXPECT_EQ(last().function, "ShowYuvFrame");
    EXPECT_EQ(last().pHandle, &g_aPanes[0]);
    EXPECT_EQ(last().nSize, 112U);
    EXPECT_EQ(last().bytes, bytesOf(frame));
}

TEST_F(Wrapper, ClearDrawReachesTheRenderer)
{
    const auto pane = xelt::Renderer::create();
    pane.clearDraw();
    EXPECT_EQ(last().function, "ClearDraw");
    EXPECT_EQ(last().pHandle, &g_aPanes[0]);
}

TEST_F(Wrapper, OverlayRecordsGoToTheReceiverWhole)
{
    struct Received
    {
        Bytes bytes;
        std::int32_t nResult = 0;
    } received;
    XeltDrawInfoRequest request{};
    request.pObject = &received;
    request.pfnReceiver = [](const void *pRecord, std::int32_t nLength, void *pObject) -> std::int32_t {
        auto *pReceived = static_cast<Received *>(pObject);
        const auto *pBytes = static_cast<const unsigned char *>(pRecord);
        pReceived->bytes.assign(pBytes, pBytes + nLength);
        return pReceived->nResult;
    };
    XeltDrawInfo record{};
    record.nType = DRAWINFO_FILLED_AREA;
    record.fOpacity = 0.5F;

    EXPECT_TRUE(xelt::addDrawInfo(request, record));
    EXPECT_EQ(received.bytes.size(), 416U);
    EXPECT_EQ(received.bytes, bytesOf(record));

    received.nResult = -1;
    EXPECT_FALSE(xelt::addDrawInfo(request, record));
    EXPECT_FALSE(xelt::addDrawInfo(XeltDrawInfoRequest{}, record));
}

} // namespace
