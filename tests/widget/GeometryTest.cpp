// Where the picture goes: ratio mode, destination rectangle and the quad, in the arithmetic that hosts count
// on.
#include "CoreLog.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace xelttest;
using testing::ElementsAre;

struct Edges
{
    int left;
    int top;
    int right;
    int bottom;

    QRect rect() const { return QRect(QPoint(left, top), QPoint(right, bottom)); }
};

// The division is in single precision.
geometry::NormRect areaOf(const Edges &edges, int nWidth, int nHeight)
{
    const auto divide = [](int nEdge, int nLength) {
        return static_cast<double>(static_cast<float>(nEdge) / static_cast<float>(nLength));
    };
    return {divide(edges.left, nWidth), divide(edges.top, nHeight), divide(edges.right, nWidth),
            divide(edges.bottom, nHeight)};
}

class Geometry : public testing::Test
{
protected:
    void SetUp() override { CoreLog::instance().reset(); }

    int32_t setMode(int32_t nMode)
    {
        return m_yuv.SetParam(XELTCMD_SET_DRAW_RATIO_MODE, &nMode, sizeof nMode);
    }
    int32_t setRect(const XeltDrawDstRect &rect)
    {
        return m_yuv.SetParam(XELTCMD_SET_DRAW_DST_RECT, &rect, sizeof rect);
    }
    void setSizes(int nWidth, int nHeight, int nVideoWidth, int nVideoHeight)
    {
        m_yuv.resize(nWidth, nHeight);
        m_yuv.m_nVideoWidth = nVideoWidth;
        m_yuv.m_nVideoHeight = nVideoHeight;
    }

    OpenYuv m_yuv;
};

struct Fit
{
    int nWidth;
    int nHeight;
    int nVideoWidth;
    int nVideoHeight;
    Edges expected;
};

TEST_F(Geometry, RatioModeFitsTheFrame)
{
    const Fit aFits[] = {
        {800, 600, 1920, 1080, {0, 75, 799, 524}},
        {800, 600, 1080, 1920, {231, 0, 568, 599}},
        {800, 600, 800, 600, {0, 0, 799, 599}},
        {801, 601, 800, 600, {0, 0, 800, 600}},
        {800, 600, 4, 3, {0, 0, 799, 599}},
        {640, 480, 640, 480, {0, 0, 639, 479}},
        {641, 481, 640, 480, {0, 0, 640, 480}}, // equal ratios of the edge differences
        {300, 200, 100, 100, {50, 0, 249, 199}},
        {200, 300, 100, 100, {0, 50, 199, 249}},
        {101, 101, 1, 1, {0, 0, 100, 100}},
        {106, 101, 100, 100, {2, 0, 103, 100}}, // a difference of 5 moves each edge by 2
        {101, 106, 100, 100, {0, 2, 100, 103}},
        {50, 400, 720, 576, {0, 180, 49, 219}},
        {400, 50, 720, 576, {169, 0, 230, 49}},
        {320, 240, 1, 10000, {159, 0, 160, 239}},
        {320, 240, 10000, 1, {0, 119, 319, 120}},
        {2, 2, 1920, 1080, {0, 0, 1, 1}},
        {3, 2, 1080, 1920, {1, 0, 1, 1}},
        {1000, 3, 16, 9, {498, 0, 501, 2}},
    };
    for (const Fit &fit : aFits) {
        SCOPED_TRACE(testing::Message() << fit.nWidth << "x" << fit.nHeight << " with " << fit.nVideoWidth
                                        << "x" << fit.nVideoHeight);
        setSizes(fit.nWidth, fit.nHeight, fit.nVideoWidth, fit.nVideoHeight);
        EXPECT_EQ(setMode(0), 0);
        EXPECT_EQ(m_yuv.m_rcDraw, fit.expected.rect());
        EXPECT_EQ(m_yuv.m_rcDrawArea, areaOf(fit.expected, fit.nWidth, fit.nHeight));
    }
}

TEST_F(Geometry, RatioModeLogsBothRectangles)
{
    setSizes(800, 600, 1920, 1080);
    EXPECT_EQ(setMode(0), 0);
    EXPECT_THAT(
        CoreLog::instance().records(),
        ElementsAre(
            CoreLogRecord{CORELOG_MSG, "[CLS_ShaderBase::SetDrawRatioMode] before l=0, t=0, r=799, b=599", 0},
            CoreLogRecord{CORELOG_MSG, "[CLS_ShaderBase::SetDrawRatioMode]after l=0, t=75, r=799, b=524",
                          0}));
}

TEST_F(Geometry, OtherModesFillTheWidget)
{
    for (const int32_t nMode : {1, 2, -1, 256, INT32_MAX, INT32_MIN}) {
        setSizes(800, 600, 1920, 1080);
        setMode(0);
        CoreLog::instance().clear();
        EXPECT_EQ(setMode(nMode), 0);
        EXPECT_EQ(m_yuv.m_rcDraw, QRect(0, 0, 800, 600));
        EXPECT_EQ(m_yuv.m_rcDrawArea, areaOf({0, 0, 799, 599}, 800, 600));
        EXPECT_DOUBLE_EQ(m_yuv.m_rcDrawArea.right, static_cast<double>(0.99875F));
        EXPECT_THAT(CoreLog::instance().messages(),
                    ElementsAre("[CLS_ShaderBase::SetDrawRatioMode] before l=0, t=0, r=799, b=599",
                                "[CLS_ShaderBase::SetDrawRatioMode]after l=0, t=0, r=799, b=599"));
    }
}

TEST_F(Geometry, RatioModeWithoutAFrameSizeFillsTheWidget)
{
    for (const auto &[nVideoWidth, nVideoHeight] :
         {std::pair(0, 0), std::pair(0, 100), std::pair(100, 0), std::pair(-5, 100)}) {
        setSizes(320, 240, nVideoWidth, nVideoHeight);
        EXPECT_EQ(setMode(0), 0);
        EXPECT_EQ(m_yuv.m_rcDraw, QRect(0, 0, 320, 240));
        EXPECT_EQ(m_yuv.m_rcDrawArea, areaOf({0, 0, 319, 239}, 320, 240));
    }
}

TEST_F(Geometry, RatioModeOfTinyWidgetsDividesByNothing)
{
    for (const auto &[nWidth, nHeight] : {std::pair(1, 1), std::pair(1, 50), std::pair(50, 1)}) {
        SCOPED_TRACE(testing::Message() << nWidth << "x" << nHeight);
        setSizes(nWidth, nHeight, 1920, 1080);
        EXPECT_EQ(setMode(0), 0);
        EXPECT_TRUE(QRect(0, 0, nWidth, nHeight).contains(m_yuv.m_rcDraw));
        EXPECT_GE(m_yuv.m_rcDrawArea.left, 0.0);
        EXPECT_LE(m_yuv.m_rcDrawArea.right, 1.0);
    }
}

TEST_F(Geometry, WidgetWithoutSizeKeepsTheArea)
{
    setSizes(0, 0, 1920, 1080);
    m_yuv.m_rcDrawArea = {0.1, 0.2, 0.3, 0.4};
    EXPECT_EQ(setMode(0), 0);
    EXPECT_EQ(m_yuv.m_rcDraw, m_yuv.rect());
    EXPECT_EQ(m_yuv.m_rcDrawArea, (geometry::NormRect{0.1, 0.2, 0.3, 0.4}));
    EXPECT_EQ(setRect({0, 0, 10, 10}), 0);
    EXPECT_EQ(m_yuv.m_rcDrawArea, (geometry::NormRect{0.1, 0.2, 0.3, 0.4}));
}

TEST_F(Geometry, DestinationRectangleIsTakenAsGivenAndLogged)
{
    setSizes(320, 240, 1920, 1080);
    EXPECT_EQ(setRect({-50, 20, 400, 139}), 0);
    EXPECT_EQ(m_yuv.m_rcDraw, QRect(QPoint(-50, 20), QPoint(400, 139)));
    EXPECT_EQ(m_yuv.m_rcDrawArea, areaOf({-50, 20, 400, 139}, 320, 240));
    EXPECT_THAT(
        CoreLog::instance().records(),
        ElementsAre(
            CoreLogRecord{CORELOG_MSG, "[CLS_ShaderBase::SetDrawDstRect] width=320, height=240", 0},
            CoreLogRecord{CORELOG_MSG,
                          "[CLS_ShaderBase::SetDrawDstRect] left=-50, top=20 , right =400 ,bottom = 139", 0},
            CoreLogRecord{
                CORELOG_MSG,
                "[CLS_ShaderBase::SetDrawDstRect] left=-0.16, top=0.08 , right =1.25 ,bottom = 0.58", 0}));
}

TEST_F(Geometry, DestinationRectangleBelowTwoByTwoIsStoredButRefused)
{
    setSizes(320, 240, 1920, 1080);
    const geometry::NormRect rcBefore{0.1, 0.2, 0.3, 0.4};
    m_yuv.m_rcDrawArea = rcBefore;
    for (const XeltDrawDstRect &rect :
         {XeltDrawDstRect{10, 10, 10, 200}, XeltDrawDstRect{100, 100, 100, 300},
          XeltDrawDstRect{10, 10, 200, 10}, XeltDrawDstRect{5, 5, 4, 4}, XeltDrawDstRect{10, 10, 5, 20},
          XeltDrawDstRect{0, 0, 0, 0}, XeltDrawDstRect{INT32_MAX, 0, INT32_MIN, 10},
          XeltDrawDstRect{0, INT32_MAX, 10, INT32_MIN},
          XeltDrawDstRect{INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX},
          XeltDrawDstRect{INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN}}) {
        CoreLog::instance().clear();
        EXPECT_EQ(setRect(rect), -1);
        EXPECT_EQ(m_yuv.m_rcDraw.left(), rect.left);
        EXPECT_EQ(m_yuv.m_rcDraw.top(), rect.top);
        EXPECT_EQ(m_yuv.m_rcDraw.right(), rect.right);
        EXPECT_EQ(m_yuv.m_rcDraw.bottom(), rect.bottom);
        EXPECT_EQ(m_yuv.m_rcDrawArea, rcBefore);
        EXPECT_EQ(CoreLog::instance().messages().size(), 2U); // the third line is for accepted ones
    }
}

TEST_F(Geometry, SmallestAndLargestDestinationRectanglesAreAccepted)
{
    setSizes(320, 240, 1920, 1080);
    for (const Edges &edges :
         {Edges{10, 10, 11, 11}, Edges{-1, -1, 0, 0}, Edges{INT32_MAX - 1, 0, INT32_MAX, 1},
          Edges{INT32_MIN, INT32_MIN, INT32_MIN + 1, INT32_MIN + 1},
          Edges{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, Edges{0, 0, INT32_MAX, INT32_MAX}}) {
        EXPECT_EQ(setRect({edges.left, edges.top, edges.right, edges.bottom}), 0);
        EXPECT_EQ(m_yuv.m_rcDraw.left(), edges.left);
        EXPECT_EQ(m_yuv.m_rcDraw.bottom(), edges.bottom);
        EXPECT_EQ(m_yuv.m_rcDrawArea, areaOf(edges, 320, 240));
    }
}

struct Quad
{
    geometry::NormRect rcArea;
    geometry::NormRect rcZoom;
    float fLeft;
    float fTop;
    float fRight;
    float fBottom;
};

TEST_F(Geometry, QuadMapsTheAreaIntoTheZoomWindow)
{
    const geometry::NormRect whole{0, 0, 1, 1};
    const Quad aQuads[] = {
        {whole, whole, -1, 1, 1, -1},
        {whole, {0.25, 0.25, 0.75, 0.75}, -2, 2, 2, -2},
        {{0.25, 0.125, 0.75, 0.5}, whole, -0.5F, 0.75F, 0.5F, 0},
        {{0.25, 0.25, 0.5, 0.5}, {0, 0, 0.5, 0.5}, 0, 0, 1, -1},
        {whole, {0, 0.5, 0.25, 1}, -1, 3, 7, -1},
        {{-0.5, -0.5, 1.5, 1.5}, whole, -2, 2, 2, -2},
        {{0, 0, static_cast<double>(0.99875F), 1},
         whole,
         -1,
         1,
         static_cast<float>(2 * static_cast<double>(0.99875F) - 1),
         -1},
        // Empty and inverted windows turn off the area too.
        {{0.25, 0.25, 0.5, 0.5}, {0.5, 0.5, 0.5, 0.5}, -1, 1, 1, -1},
        {{0.25, 0.25, 0.5, 0.5}, {0.75, 0, 0.25, 1}, -1, 1, 1, -1},
        {{0.25, 0.25, 0.5, 0.5}, {0, 1, 1, 0}, -1, 1, 1, -1},
        {{0.25, 0.25, 0.5, 0.5}, {0, 0, 1, 0}, -1, 1, 1, -1},
    };
    int nCase = 0;
    for (const Quad &quad : aQuads) {
        m_yuv.m_rcDrawArea = quad.rcArea;
        m_yuv.m_rcEZoom = quad.rcZoom;
        geometry::QuadVertices afOut{};
        m_yuv.ComputeQuadVertices(afOut);
        // Bottom left, bottom right, top left, top right.
        EXPECT_THAT(afOut, ElementsAre(quad.fLeft, quad.fBottom, quad.fRight, quad.fBottom, quad.fLeft,
                                       quad.fTop, quad.fRight, quad.fTop))
            << "case " << nCase;
        ++nCase;
    }
}

TEST_F(Geometry, QuadOfNotANumberIsTheFullOne)
{
    const double dNan = std::numeric_limits<double>::quiet_NaN();
    m_yuv.m_rcEZoom = {dNan, 0, 1, 1};
    geometry::QuadVertices afOut{};
    m_yuv.ComputeQuadVertices(afOut);
    EXPECT_THAT(afOut, ElementsAre(-1, -1, 1, -1, -1, 1, 1, 1));
}

} // namespace
