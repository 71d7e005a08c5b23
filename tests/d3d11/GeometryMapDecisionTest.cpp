// Whether buffers are mapped is decided once for a process. Here the first update finds no context and goes
// by the OpenGL library that Qt was built for, which is the desktop one.
#include "GeometryRendererTest.h"

namespace xelttest {
namespace {

TEST(GeometryMapDecisionTest, TheFirstUpdateDecidesForGood)
{
    ASSERT_EQ(QOpenGLContext::currentContext(), nullptr);
    ASSERT_EQ(QOpenGLContext::openGLModuleType(), QOpenGLContext::LibGL);
    {
        QtMessages messages;
        GeometryRenderer renderer;
        renderer.setFeatures(renderer.features() & ~GeometryRenderer::UseVertexArray);
        renderer.updateGeometry(indexedQuad({0, 1, 2, 3}));
        EXPECT_EQ(messages.take(), (Messages{debugLine("creating IBO..."), debugLine("IBO create error"),
                                             debugLine("creating VBO..."), warningLine("VBO create error"),
                                             debugLine("vao updated")}));
        EXPECT_FALSE(renderer.needsUpdate());
    }

    OffscreenGl gl;
    GlRecorder recorder;
    GeometryRenderer renderer;
    renderer.setFeatures(GeometryRenderer::UseIndexBuffer | GeometryRenderer::MapBuffers);
    renderer.updateGeometry(indexedQuad({0, 1, 2, 3}));
    recorder.take();
    renderer.updateGeometry(indexedQuad({3, 2, 1, 0}));
    EXPECT_EQ(recorder.take(), (Calls{"bind element", "map element", "unmap element", "unbind element"}))
        << "in either flavour of OpenGL";
}

} // namespace
} // namespace xelttest
