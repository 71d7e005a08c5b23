// The overlay pair and the vertex shader of the video programs.
#include "GlBench.h"

#include <QMatrix4x4>

#include <vector>

namespace {

using namespace xelttest;

using OverlayShaderTest = GlBench;

constexpr Rgba k_untouched = {0.25, 0.25, 0.25, 0.25};

Rgba pixelOf(const Plane &plane, int x, int y)
{
    return {plane.at(x, y, 0), plane.at(x, y, 1), plane.at(x, y, 2), plane.at(x, y, 3)};
}

// The picture with its first texel at a place in a larger, untouched target.
std::vector<Rgba> placed(const Plane &plane, int nWidth, int nHeight, int nLeft, int nBottom)
{
    std::vector<Rgba> vecValues;
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            const int nColumn = x - nLeft;
            const int nRow = y - nBottom;
            const bool blInside = nColumn >= 0 && nColumn < plane.nWidth && nRow >= 0 && nRow < plane.nHeight;
            vecValues.push_back(blInside ? pixelOf(plane, nColumn, nRow) : k_untouched);
        }
    }
    return vecValues;
}

TEST_F(OverlayShaderTest, OverlayIsCopiedWhereItsQuadLies)
{
    const Plane plane = noise(8, 4, 4, 11);
    PlaneTexture picture(*this, plane);
    const auto program = link(shaderText(":/opengl/shaders/OSD.vert"),
                              fragmentPrefix() + shaderText(":/opengl/shaders/OSD.frag"));
    ASSERT_TRUE(program->bind());
    picture.bind(2);
    program->setUniformValue("uTex", 2);
    EXPECT_TRUE(allNear(drawQuad(*program, 8, 4), placed(plane, 8, 4, 0, 0), 1e-6));
    // The lower right quarter.
    EXPECT_TRUE(
        allNear(drawQuad(*program, 16, 8, {0.0F, -1.0F, 1.0F, 0.0F}), placed(plane, 16, 8, 8, 0), 1e-6));
}

TEST_F(OverlayShaderTest, VideoVertexShaderAppliesItsMatrix)
{
    const Plane plane = noise(8, 4, 4, 12);
    PlaneTexture picture(*this, plane);
    const auto program = link(shaderText(":/opengl/shaders/Video.vert"),
                              fragmentPrefix() + shaderText(":/opengl/shaders/OSD.frag"));
    ASSERT_TRUE(program->bind());
    picture.bind(0);
    program->setUniformValue("uTex", 0);
    program->setUniformValue("uMatrix", QMatrix4x4());
    EXPECT_TRUE(allNear(drawQuad(*program, 8, 4), placed(plane, 8, 4, 0, 0), 1e-6));

    QMatrix4x4 matrix;
    matrix.translate(-0.5F, 0.5F);
    matrix.scale(0.5F);
    program->setUniformValue("uMatrix", matrix);
    EXPECT_TRUE(allNear(drawQuad(*program, 16, 8), placed(plane, 16, 8, 0, 4), 1e-6));
}

} // namespace
