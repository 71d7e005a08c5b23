// The texts of the program that draws the converted picture. They serve variants with several planes and with
// gamma too: MULTI_COORD, USER_SAMPLER and XYZ_GAMMA are never defined here.
#pragma once

namespace rgb {

// clang-format off
// Attribute 0 is a_Position, attribute 1 a_TexCoords0. Desktop OpenGL has no default precision, and there Qt
// defines the qualifiers away, so the precision lines are for OpenGL ES alone.
constexpr char kVertexShader[] =
    "#ifdef GL_ES\n"
    "precision mediump int;\n"
    "precision mediump float;\n"
    "#endif\n"
    "attribute vec4 a_Position;\n"
    "attribute vec2 a_TexCoords0;\n"
    "uniform mat4 u_Matrix;\n"
    "varying vec2 v_TexCoords0;\n"
    "#ifdef MULTI_COORD\n"
    "attribute vec2 a_TexCoords1;\n"
    "attribute vec2 a_TexCoords2;\n"
    "varying vec2 v_TexCoords1;\n"
    "varying vec2 v_TexCoords2;\n"
    "#ifdef HAS_ALPHA\n"
    "attribute vec2 a_TexCoords3;\n"
    "varying vec2 v_TexCoords3;\n"
    "#endif\n"
    "#endif\n"
    "void main() {\n"
    "    gl_Position = u_Matrix * a_Position;\n"
    "    v_TexCoords0 = a_TexCoords0;\n"
    "#ifdef MULTI_COORD\n"
    "    v_TexCoords1 = a_TexCoords1;\n"
    "    v_TexCoords2 = a_TexCoords2;\n"
    "#ifdef HAS_ALPHA\n"
    "    v_TexCoords3 = a_TexCoords3;\n"
    "#endif\n"
    "#endif\n"
    "}\n";

constexpr char kFragmentShader[] =
    "#ifdef GL_ES\n"
    "precision mediump int;\n"
    "precision mediump float;\n"
    "#endif\n"
    "#if __VERSION__ < 130\n"
    "#define texture texture2D\n"
    "#else\n"
    "#define texture2D texture\n"
    "#endif\n"
    "#define HAS_ALPHA\n"
    "uniform sampler2D u_Texture0;\n"
    "uniform mat4 u_colorMatrix;\n"
    "uniform float u_opacity;\n"
    "uniform mat4 u_c;\n"
    "uniform vec2 u_texelSize[1];\n"
    "uniform vec2 u_textureSize[1];\n"
    "uniform int u_iDrawFlag;\n"
    "uniform vec3 u_vDrawColor;\n"
    "uniform float u_fDrawAlpha;\n"
    "varying vec2 v_TexCoords0;\n"
    "#ifndef USER_SAMPLER\n"
    "vec4 sample2d(sampler2D tex, vec2 pos, int plane) {\n"
    "    return texture(tex, pos);\n"
    "}\n"
    "#endif\n"
    "void main() {\n"
    "    vec4 c = sample2d(u_Texture0, v_TexCoords0, 0);\n"
    "    c = u_c * c;\n"
    "#ifndef HAS_ALPHA\n"
    "    c.a = 1.0;\n"
    "#endif\n"
    "#ifdef XYZ_GAMMA\n"
    "    c.rgb = pow(c.rgb, vec3(2.6));\n"
    "#endif\n"
    "    c = u_colorMatrix * c;\n"
    "#ifdef XYZ_GAMMA\n"
    "    c.rgb = pow(c.rgb, vec3(1.0 / 2.2));\n"
    "#endif\n"
    "    gl_FragColor = clamp(c, 0.0, 1.0) * u_opacity;\n"
    "    if (1 == u_iDrawFlag) {\n"
    "        gl_FragColor = vec4(u_vDrawColor, u_fDrawAlpha);\n"
    "    }\n"
    "}\n";
// clang-format on

} // namespace rgb
