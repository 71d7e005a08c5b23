// The vertex array object of the geometry renderer, and the end of everything that it makes.
#include "GeometryRendererTest.h"

namespace xelttest {
namespace {

using GeometryLayoutTest = GeometryRendererTest;

const Calls k_vecVertexUpload{"bind array", "data array 64", "unbind array"};

Calls layoutCalls()
{
    return Calls{"bind vao", "bind array"} + pointerCalls() + Calls{"unbind array", "unbind vao"};
}

const Messages k_vecNewLayout{debugLine("vao updated"),
                              debugLine("geometry attributes changed, rebind vao..."),
                              debugLine("geometry updated")};

std::unique_ptr<FreeGeometry> freeGeometry()
{
    auto pGeometry = std::make_unique<FreeGeometry>();
    pGeometry->vertexCount = 4;
    pGeometry->vertexData = quad()->vertexData;
    return pGeometry;
}

TEST_F(GeometryLayoutTest, TheFirstUpdatePutsTheLayoutIntoAVertexArrayObject)
{
    EXPECT_EQ(update(quad()),
              Calls{"create buffer"} + k_vecVertexUpload + Calls{"create vao"} + layoutCalls());
    EXPECT_EQ(m_messages.take(),
              (Messages{debugLine("creating VBO..."), debugLine("creating VAO...")} + k_vecNewLayout));
}

TEST_F(GeometryLayoutTest, TheSameLayoutLeavesItAlone)
{
    update(quad());
    EXPECT_EQ(update(quad()), k_vecVertexUpload);
    EXPECT_EQ(m_messages.take(), Messages());
    auto pNamed = freeGeometry();
    pNamed->m_vecAttributes[0].name = "position";
    EXPECT_EQ(update(std::move(pNamed)), k_vecVertexUpload) << "names do not count";
    EXPECT_EQ(m_messages.take(), Messages());
}

TEST_F(GeometryLayoutTest, AnyOtherLayoutIsBoundAnew)
{
    const auto expectNew = [this](std::unique_ptr<FreeGeometry> pGeometry, const char *pszWhat) {
        update(quad());
        const Calls vecCalls = update(std::move(pGeometry));
        EXPECT_EQ(m_messages.take(), k_vecNewLayout) << pszWhat;
        EXPECT_EQ(std::count(vecCalls.begin(), vecCalls.end(), "bind vao"), 1) << pszWhat;
        EXPECT_EQ(std::count(vecCalls.begin(), vecCalls.end(), "create vao"), 0) << pszWhat;
    };
    auto pGeometry = freeGeometry();
    pGeometry->m_nStride = 20;
    pGeometry->vertexCount = 3;
    expectNew(std::move(pGeometry), "stride");
    pGeometry = freeGeometry();
    pGeometry->m_vecAttributes[1].offset = 4;
    expectNew(std::move(pGeometry), "offset");
    pGeometry = freeGeometry();
    pGeometry->m_vecAttributes[1].tupleSize = 1;
    expectNew(std::move(pGeometry), "tuple size");
    pGeometry = freeGeometry();
    pGeometry->m_vecAttributes[1].type = GL_SHORT;
    expectNew(std::move(pGeometry), "type");
    pGeometry = freeGeometry();
    pGeometry->m_vecAttributes[1].normalize = true;
    expectNew(std::move(pGeometry), "normalize");
    pGeometry = freeGeometry();
    pGeometry->m_vecAttributes.removeLast();
    expectNew(std::move(pGeometry), "number");
}

TEST_F(GeometryLayoutTest, EveryFieldReachesThePointer)
{
    auto pGeometry = std::make_unique<FreeGeometry>();
    pGeometry->m_nStride = 12;
    pGeometry->m_vecAttributes = {{true, GL_UNSIGNED_BYTE, 4, 8, {}}, {false, GL_SHORT, 3, 2, {}}};
    EXPECT_EQ(update(std::move(pGeometry)),
              (Calls{"create buffer", "bind array"} +
               (isDesktop() ? Calls{"map array", "write array 0 0"} : Calls{"write array 0 0"}) +
               Calls{"unbind array", "create vao", "bind vao", "bind array",
                     "pointer 0 size 4 type 5121 norm 1 stride 12 at 8", "enable 0",
                     "pointer 1 size 3 type 5122 norm 0 stride 12 at 2", "enable 1", "unbind array",
                     "unbind vao"}));
}

TEST_F(GeometryLayoutTest, TheIndexBufferGoesIntoTheVertexArrayObject)
{
    const Calls vecCalls = update(indexedQuad({0, 1, 2, 3}));
    const Calls vecLayout = Calls{"create vao", "bind vao", "bind array"} + pointerCalls() +
                            Calls{"unbind array", "bind element", "unbind vao", "unbind element"};
    ASSERT_GE(vecCalls.size(), vecLayout.size());
    EXPECT_EQ(Calls(vecCalls.end() - static_cast<long>(vecLayout.size()), vecCalls.end()), vecLayout);
}

TEST_F(GeometryLayoutTest, WithoutAVertexBufferItHoldsNoPointers)
{
    m_renderer.setFeatures(GeometryRenderer::UseVertexArray);
    EXPECT_EQ(update(quad()), (Calls{"create vao", "bind vao", "unbind vao"}));
    EXPECT_EQ(m_messages.take(), (Messages{debugLine("creating VAO...")} + k_vecNewLayout));
}

TEST_F(GeometryLayoutTest, WithoutTheFeatureTheLayoutIsOnlyNoted)
{
    m_renderer.setFeatures(0);
    EXPECT_EQ(update(quad()), Calls());
    EXPECT_EQ(m_messages.take(), (Messages{debugLine("vao updated")}));
    EXPECT_EQ(update(quad()), Calls());
    EXPECT_EQ(m_messages.take(), Messages());
    m_renderer.setFeatures(GeometryRenderer::UseVertexArray);
    EXPECT_EQ(update(quad()), Calls()) << "the layout is the one that was noted";
}

TEST_F(GeometryLayoutTest, AVertexArrayObjectThatCannotBeMadeIsReported)
{
    m_recorder.m_blFailVertexArrays = true;
    EXPECT_EQ(update(quad()), Calls{"create buffer"} + k_vecVertexUpload + Calls{"create vao"});
    EXPECT_EQ(m_messages.take(), (Messages{debugLine("creating VBO..."), debugLine("creating VAO..."),
                                           debugLine("VAO create error"), debugLine("vao updated")}));
    EXPECT_FALSE(m_renderer.needsUpdate());
    m_recorder.m_blFailVertexArrays = false;
    EXPECT_EQ(update(quad()), k_vecVertexUpload) << "not tried again for the same layout";
}

TEST_F(GeometryLayoutTest, NullDestroysEverything)
{
    update(indexedQuad({0, 1, 2, 3}));
    m_renderer.markDirty();
    EXPECT_EQ(update(nullptr), (Calls{"delete buffer", "delete buffer", "delete vao"}));
    EXPECT_EQ(m_messages.take(), Messages());
    EXPECT_EQ(m_renderer.geometry(), nullptr);
    EXPECT_EQ(render(), Calls()) << "nothing to draw";
    EXPECT_EQ(update(nullptr), Calls());
    // The index buffer's size starts at 0 again, the layout does not.
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 3})),
              (Calls{"create buffer", "bind element", "data element 8", "unbind element", "create buffer"} +
               k_vecVertexUpload));
}

TEST_F(GeometryLayoutTest, DestroyTakesTheVertexArrayObjectForGood)
{
    update(indexedQuad({0, 1, 2, 3}));
    m_recorder.take();
    m_renderer.destroy();
    EXPECT_EQ(m_recorder.take(), (Calls{"delete buffer", "delete vao", "delete buffer"}));
    EXPECT_EQ(m_renderer.geometry(), nullptr);
    EXPECT_TRUE(m_renderer.needsUpdate());

    EXPECT_EQ(update(quad()), Calls{"create buffer"} + k_vecVertexUpload);
    EXPECT_EQ(m_messages.take(), (Messages{debugLine("creating VBO...")}));
    EXPECT_EQ(render(), (Calls{"bind array"} + pointerCalls() +
                         Calls{"arrays 5 0 4", "unbind array", "disable 0", "disable 1"}));
}

TEST_F(GeometryLayoutTest, AnotherLayoutAfterDestroyBringsItBack)
{
    update(quad());
    m_renderer.destroy();
    auto pGeometry = freeGeometry();
    pGeometry->m_vecAttributes.removeLast();
    update(std::move(pGeometry));
    EXPECT_EQ(m_messages.take(),
              (Messages{debugLine("creating VBO..."), debugLine("creating VAO...")} + k_vecNewLayout));
}

TEST_F(GeometryLayoutTest, TheDestructorDestroysEverything)
{
    m_recorder.take();
    {
        GeometryRenderer renderer;
        renderer.updateGeometry(indexedQuad({0, 1, 2, 3}));
        m_recorder.take();
    }
    Calls vecCalls = m_recorder.take();
    std::sort(vecCalls.begin(), vecCalls.end());
    EXPECT_EQ(vecCalls, (Calls{"delete buffer", "delete buffer", "delete vao"}));
}

TEST_F(GeometryLayoutTest, DirtyMarksLastUntilTheNextUpdate)
{
    EXPECT_TRUE(m_renderer.needsUpdate());
    update(quad());
    EXPECT_FALSE(m_renderer.needsUpdate());
    m_renderer.markDirty();
    EXPECT_TRUE(m_renderer.needsUpdate());
    update(quad());
    EXPECT_FALSE(m_renderer.needsUpdate()) << "with the layout unchanged";
}

// The context takes buffers and vertex array object with it; the next update makes the buffers anew.
TEST_F(GeometryLayoutTest, SurvivesTheLossOfItsContext)
{
    GeometryRenderer renderer;
    {
        OffscreenGl other;
        renderer.updateGeometry(quad());
    }
    m_gl.makeCurrent();
    m_recorder.take();
    m_messages.take();
    renderer.updateGeometry(quad());
    EXPECT_EQ(m_recorder.take(), Calls{"create buffer"} + k_vecVertexUpload);
    EXPECT_EQ(m_messages.take(), (Messages{debugLine("creating VBO...")}));
    renderer.render();
    EXPECT_EQ(m_recorder.take(), (Calls{"bind array"} + pointerCalls() +
                                  Calls{"arrays 5 0 4", "unbind array", "disable 0", "disable 1"}));
}

} // namespace
} // namespace xelttest
