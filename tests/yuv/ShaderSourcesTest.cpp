// The texts of the programs, to the character: hosts' shader caches key on them.
#include "yuv/YuvShaderSources.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

const std::string k_sYv12Vertex = yuv::kYv12VertexShader;
const std::string k_sYv12Fragment = yuv::kYv12FragmentShader;
const std::string k_sNv12Vertex = yuv::kNv12VertexShader;
const std::string k_sNv12Fragment = yuv::kNv12FragmentShader;

std::string blanks(size_t nCount)
{
    return std::string(nCount, ' ');
}

TEST(ShaderSourcesTest, HaveTheirLengths)
{
    EXPECT_EQ(k_sYv12Vertex.size(), 405u);
    EXPECT_EQ(k_sYv12Fragment.size(), 1194u);
    EXPECT_EQ(k_sNv12Vertex.size(), 183u);
    EXPECT_EQ(k_sNv12Fragment.size(), 674u);
}

TEST(ShaderSourcesTest, Yv12VertexTextIsOneLine)
{
    EXPECT_EQ(k_sYv12Vertex, "uniform mat4 u_Matrix;" + blanks(23) + "attribute vec4 vertexIn;" + blanks(24) +
                                 "attribute vec2 textureIn;" + blanks(24) + "varying vec2 textureOut;" +
                                 blanks(25) + "void main(void)" + blanks(34) + "{" + blanks(53) +
                                 "gl_Position = u_Matrix * vertexIn;" + blanks(29) +
                                 "textureOut = textureIn;" + blanks(24) + "}");
}

TEST(ShaderSourcesTest, Yv12FragmentTextIsAsItWas)
{
    const std::string s25 = blanks(25);
    const std::string s29 = blanks(29);
    EXPECT_EQ(k_sYv12Fragment,
              "#ifdef GL_ES \n" + blanks(24) + "precision mediump int;\n" + s25 +
                  "precision mediump float;\n" + s25 + "#endif\n" + s25 + "varying vec2 textureOut;" + s25 +
                  "uniform sampler2D tex_y;" + s25 + "uniform sampler2D tex_u;" + s25 +
                  "uniform sampler2D tex_v;" + s25 + "uniform int u_iDrawFlag;" + s25 +
                  "uniform float u_fDrawAlpha;" + s25 + "uniform vec3 u_vDrawColor;" + s25 +
                  "void main(void)" + s25 + "{" + s29 + "vec3 yuv;" + s29 + "vec3 rgb;" + s29 +
                  "yuv.x = texture2D(tex_y, textureOut).r;" + s29 +
                  "yuv.y = texture2D(tex_u, textureOut).r - 0.5;" + s29 +
                  "yuv.z = texture2D(tex_v, textureOut).r - 0.5;" + s29 +
                  "rgb = mat3(1.0, 1.0, 1.0, 0.0, -0.3455, 1.779, 1.4075, -0.7169, 0) * yuv;" + s29 +
                  "gl_FragColor = vec4(rgb, 1);" + s29 + "if (1 == u_iDrawFlag) {" + blanks(32) +
                  "gl_FragColor = vec4(u_vDrawColor, u_fDrawAlpha);" + blanks(28) + "}" + blanks(24) + "}");
}

TEST(ShaderSourcesTest, Nv12TextsAreAsTheyWere)
{
    EXPECT_EQ(k_sNv12Vertex,
              "uniform mat4 u_Matrix;\nattribute vec4 vertexIn;\nattribute vec4 textureIn;\n"
              "varying vec4 textureOut;\nvoid main(void) {\n   gl_Position = u_Matrix * vertexIn;\n"
              "   textureOut = textureIn;\n}");
    EXPECT_EQ(k_sNv12Fragment,
              "#ifdef GL_ES\nprecision mediump int;\nprecision mediump float;\n#endif\n"
              "varying highp vec4 textureOut;\nuniform sampler2D tex_y;\nuniform sampler2D tex_u;\n"
              "varying mediump float angle;\nuniform int u_iDrawFlag; \nuniform float u_fDrawAlpha; \n"
              "uniform vec3 u_vDrawColor; \nvoid main(void) {\n   highp vec3 yuv;\n   highp vec3 rgb; \n"
              "   yuv.x = texture2D(tex_y, textureOut.st).r - 0.0625;\n"
              "   yuv.y = texture2D(tex_u, textureOut.st).r - 0.5;\n"
              "   yuv.z = texture2D(tex_u, textureOut.st).g - 0.5;\n"
              "   rgb = mat3(1, 1, 1, 0, -0.39465, 2.03211,1.13983, -0.58060, 0) * yuv; \n"
              "   gl_FragColor = vec4(rgb, 1);\n   if (1 == u_iDrawFlag) {\n"
              "       gl_FragColor = vec4(u_vDrawColor, u_fDrawAlpha);\n   } \n}\n");
}

} // namespace
