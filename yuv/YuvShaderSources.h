// The GLSL ES 1.00 texts of the picture programs. They are compared byte for byte by shader caches and tests:
// blanks, the unused varying and the differing coefficients of the two formats are deliberate.
#pragma once

namespace yuv {

// clang-format off
constexpr char kYv12VertexShader[] =
    "uniform mat4 u_Matrix;                       "
    "attribute vec4 vertexIn;                        "
    "attribute vec2 textureIn;                        "
    "varying vec2 textureOut;                         "
    "void main(void)                                  "
    "{                                                     "
    "gl_Position = u_Matrix * vertexIn;                             "
    "textureOut = textureIn;                        }";

constexpr char kYv12FragmentShader[] =
    "#ifdef GL_ES \n"
    "                        precision mediump int;\n"
    "                         precision mediump float;\n"
    "                         #endif\n"
    "                         varying vec2 textureOut;                         "
    "uniform sampler2D tex_y;                         "
    "uniform sampler2D tex_u;                         "
    "uniform sampler2D tex_v;                         "
    "uniform int u_iDrawFlag;                         "
    "uniform float u_fDrawAlpha;                         "
    "uniform vec3 u_vDrawColor;                         "
    "void main(void)                         {                             "
    "vec3 yuv;                             vec3 rgb;                             "
    "yuv.x = texture2D(tex_y, textureOut).r;                             "
    "yuv.y = texture2D(tex_u, textureOut).r - 0.5;                             "
    "yuv.z = texture2D(tex_v, textureOut).r - 0.5;                             "
    "rgb = mat3(1.0, 1.0, 1.0, 0.0, -0.3455, 1.779, 1.4075, -0.7169, 0) * yuv;                             "
    "gl_FragColor = vec4(rgb, 1);                             "
    "if (1 == u_iDrawFlag) {                                "
    "gl_FragColor = vec4(u_vDrawColor, u_fDrawAlpha);                            }                        }";

constexpr char kNv12VertexShader[] =
    "uniform mat4 u_Matrix;\n"
    "attribute vec4 vertexIn;\n"
    "attribute vec4 textureIn;\n"
    "varying vec4 textureOut;\n"
    "void main(void) {\n"
    "   gl_Position = u_Matrix * vertexIn;\n"
    "   textureOut = textureIn;\n"
    "}";

constexpr char kNv12FragmentShader[] =
    "#ifdef GL_ES\n"
    "precision mediump int;\n"
    "precision mediump float;\n"
    "#endif\n"
    "varying highp vec4 textureOut;\n"
    "uniform sampler2D tex_y;\n"
    "uniform sampler2D tex_u;\n"
    "varying mediump float angle;\n"
    "uniform int u_iDrawFlag; \n"
    "uniform float u_fDrawAlpha; \n"
    "uniform vec3 u_vDrawColor; \n"
    "void main(void) {\n"
    "   highp vec3 yuv;\n"
    "   highp vec3 rgb; \n"
    "   yuv.x = texture2D(tex_y, textureOut.st).r - 0.0625;\n"
    "   yuv.y = texture2D(tex_u, textureOut.st).r - 0.5;\n"
    "   yuv.z = texture2D(tex_u, textureOut.st).g - 0.5;\n"
    "   rgb = mat3(1, 1, 1, 0, -0.39465, 2.03211,1.13983, -0.58060, 0) * yuv; \n"
    "   gl_FragColor = vec4(rgb, 1);\n"
    "   if (1 == u_iDrawFlag) {\n"
    "       gl_FragColor = vec4(u_vDrawColor, u_fDrawAlpha);\n"
    "   } \n"
    "}\n";

// The vertex stages of the renderer without a matrix.
constexpr char kYv12PlainVertexShader[] =
    "attribute vec4 vertexIn;                        "
    "attribute vec2 textureIn;                        "
    "varying vec2 textureOut;                         "
    "void main(void)                                  "
    "{                                                     "
    "gl_Position = vertexIn;                             "
    "textureOut = textureIn;                        }";

constexpr char kNv12PlainVertexShader[] =
    "attribute vec4 vertexIn;\n"
    "attribute vec4 textureIn;\n"
    "varying vec4 textureOut;\n"
    "void main(void) {\n"
    "   gl_Position = vertexIn;\n"
    "   textureOut = textureIn;\n"
    "}";

// clang-format on

static_assert(sizeof(kYv12VertexShader) - 1 == 405);
static_assert(sizeof(kYv12FragmentShader) - 1 == 1194);
static_assert(sizeof(kNv12VertexShader) - 1 == 183);
static_assert(sizeof(kNv12FragmentShader) - 1 == 674);

} // namespace yuv
