// Building the RGB program: locations, bindings and what is said of them.
#include "RgbProgramTest.h"

#include <algorithm>

namespace xelttest {
namespace {

// Uses all that the dump knows, u_to8 and both sizes included.
const char k_pszFullFragment[] =
    "#ifdef GL_ES\nprecision mediump float;\n#endif\n"
    "uniform sampler2D u_Texture0; uniform mat4 u_colorMatrix; uniform mat4 u_c;\n"
    "uniform float u_opacity; uniform vec4 u_to8;\n"
    "uniform vec2 u_texelSize[1]; uniform vec2 u_textureSize[1];\n"
    "varying vec2 v_TexCoords0;\n"
    "void main() { vec2 p = v_TexCoords0 * u_textureSize[0] + u_texelSize[0];\n"
    "  gl_FragColor = u_colorMatrix * u_c * texture2D(u_Texture0, p) * u_opacity"
    " + u_to8; }\n";

const char k_pszLeanFragment[] = "#ifdef GL_ES\nprecision mediump float;\n#endif\n"
                                 "uniform sampler2D u_Texture0; uniform mat4 u_colorMatrix;\n"
                                 "uniform float u_opacity; varying vec2 v_TexCoords0;\n"
                                 "void main() { gl_FragColor ="
                                 " u_colorMatrix * texture2D(u_Texture0, v_TexCoords0) * u_opacity; }\n";

GLuint boundProgram(QOpenGLFunctions &gl)
{
    GLint nProgram = 0;
    gl.glGetIntegerv(GL_CURRENT_PROGRAM, &nProgram);
    return static_cast<GLuint>(nProgram);
}

TEST_F(RgbProgramTest, StartsWithoutProgramAndLocations)
{
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.Program(), nullptr);
    EXPECT_EQ(program.Texture(), 0u);
    EXPECT_TRUE(program.SamplerLocations().isEmpty());
    const rgb::UniformLocations &locations = program.Locations();
    for (const int nLocation : {locations.nMatrix, locations.nColorMatrix, locations.nTo8, locations.nOpacity,
                                locations.nChannels, locations.nTexelSize, locations.nTextureSize,
                                locations.nDrawFlag, locations.nDrawColor, locations.nDrawAlpha}) {
        EXPECT_EQ(nLocation, -1);
    }
    EXPECT_FALSE(program.Bind());
    program.Release();
    program.DestroyProgram();
    EXPECT_EQ(m_messages.take(), Messages());
}

TEST_F(RgbProgramTest, FindsItsUniforms)
{
    RgbProgram program(&m_nOwner);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    ASSERT_NE(program.Program(), nullptr);
    const QOpenGLShaderProgram &linked = *program.Program();
    const rgb::UniformLocations &locations = program.Locations();
    const std::vector<std::pair<int, const char *>> vecFound{
        {locations.nMatrix, "u_Matrix"},       {locations.nColorMatrix, "u_colorMatrix"},
        {locations.nOpacity, "u_opacity"},     {locations.nChannels, "u_c"},
        {locations.nDrawFlag, "u_iDrawFlag"},  {locations.nDrawColor, "u_vDrawColor"},
        {locations.nDrawAlpha, "u_fDrawAlpha"}};
    std::vector<int> vecLocations;
    for (const auto &[nLocation, pszName] : vecFound) {
        EXPECT_GE(nLocation, 0) << pszName;
        EXPECT_EQ(nLocation, linked.uniformLocation(pszName)) << pszName;
        vecLocations.push_back(nLocation);
    }
    EXPECT_EQ(locations.nTo8, -1);
    EXPECT_EQ(locations.nTexelSize, linked.uniformLocation("u_texelSize"));
    EXPECT_EQ(locations.nTextureSize, linked.uniformLocation("u_textureSize"));
    ASSERT_EQ(program.SamplerLocations().size(), 1);
    EXPECT_EQ(program.SamplerLocations().first(), linked.uniformLocation("u_Texture0"));
    EXPECT_GE(program.SamplerLocations().first(), 0);
    vecLocations.push_back(program.SamplerLocations().first());
    std::sort(vecLocations.begin(), vecLocations.end());
    EXPECT_EQ(std::unique(vecLocations.begin(), vecLocations.end()), vecLocations.end());
}

TEST_F(RgbProgramTest, BindsAttributesAndStaysBound)
{
    RgbProgram program(&m_nOwner);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    EXPECT_EQ(program.Program()->attributeLocation("a_Position"), 0);
    EXPECT_EQ(program.Program()->attributeLocation("a_TexCoords0"), 1);
    EXPECT_EQ(program.Program()->parent(), nullptr);
    EXPECT_EQ(boundProgram(m_gl.gl()), program.Program()->programId());
    program.Release();
    EXPECT_EQ(boundProgram(m_gl.gl()), 0u);
    EXPECT_TRUE(program.Bind());
    EXPECT_EQ(boundProgram(m_gl.gl()), program.Program()->programId());
    EXPECT_EQ(m_gl.gl().glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(RgbProgramTest, AsksForTheNumberOfAttributes)
{
    RgbProgram program(&m_nOwner);
    m_recorder.take();
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    const std::vector<std::string> vecCalls = m_recorder.take();
    EXPECT_EQ(std::count(vecCalls.begin(), vecCalls.end(), "query " + std::to_string(GL_MAX_VERTEX_ATTRIBS)),
              1);
}

TEST_F(RgbProgramTest, SaysWhatItFound)
{
    RgbProgram program(&m_nOwner);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    const Messages vecMessages = m_messages.take();
    EXPECT_EQ(vecMessages,
              (Messages{debugLine("uniform locations:"), locationLine(program, "u_Texture0"),
                        locationLine(program, "u_Matrix"), locationLine(program, "u_colorMatrix"),
                        locationLine(program, "u_opacity"), locationLine(program, "u_c")}));
    for (const QtMessage &message : vecMessages) {
        EXPECT_FALSE(message.blHasPosition) << message;
    }
    EXPECT_TRUE(CoreLog::instance().records().empty());
}

TEST_F(RgbProgramTest, SaysMoreWhereTheTextHasMore)
{
    RgbProgram program(&m_nOwner, rgb::kVertexShader, k_pszFullFragment);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    EXPECT_EQ(m_messages.take(),
              (Messages{debugLine("uniform locations:"), locationLine(program, "u_Texture0"),
                        locationLine(program, "u_Matrix"), locationLine(program, "u_colorMatrix"),
                        locationLine(program, "u_opacity"), locationLine(program, "u_c"),
                        locationLine(program, "u_to8"), locationLine(program, "u_texelSize"),
                        locationLine(program, "u_textureSize")}));
    EXPECT_GE(program.Locations().nTo8, 0);
    EXPECT_GE(program.Locations().nTexelSize, 0);
    EXPECT_GE(program.Locations().nTextureSize, 0);
    EXPECT_EQ(program.Locations().nDrawFlag, -1);
}

TEST_F(RgbProgramTest, SaysLessWhereTheTextHasLess)
{
    RgbProgram program(&m_nOwner, rgb::kVertexShader, k_pszLeanFragment);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    EXPECT_EQ(m_messages.take(),
              (Messages{debugLine("uniform locations:"), locationLine(program, "u_Texture0"),
                        locationLine(program, "u_Matrix"), locationLine(program, "u_colorMatrix"),
                        locationLine(program, "u_opacity")}));
}

TEST_F(RgbProgramTest, ASecondCallChangesAndSaysNothing)
{
    RgbProgram program(&m_nOwner);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    const GLuint nProgram = program.Program()->programId();
    program.Release();
    m_messages.take();
    EXPECT_EQ(program.CreateGlslResource(k_program), 0);
    EXPECT_EQ(program.Program()->programId(), nProgram);
    EXPECT_EQ(boundProgram(m_gl.gl()), 0u) << "not even bound again";
    EXPECT_EQ(m_messages.take(), Messages());
    EXPECT_TRUE(CoreLog::instance().records().empty());
}

TEST_F(RgbProgramTest, IsMadeAnewAfterItsEnd)
{
    RgbProgram program(&m_nOwner);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    const int nMatrix = program.Locations().nMatrix;
    const GLuint nProgram = program.Program()->programId();
    program.DestroyProgram();
    EXPECT_EQ(program.Program(), nullptr);
    EXPECT_EQ(boundProgram(m_gl.gl()), 0u);
    EXPECT_EQ(m_gl.gl().glIsProgram(nProgram), GL_FALSE);
    EXPECT_EQ(program.Locations().nMatrix, nMatrix);
    m_messages.take();
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    EXPECT_EQ(m_messages.take().size(), 6u);
    EXPECT_EQ(boundProgram(m_gl.gl()), program.Program()->programId());
}

// The texts serve variants too, which other parts of a system switch on by definitions in front of them.
TEST_F(RgbProgramTest, TheTextsKeepTheirVariants)
{
    const std::string sVertexAll =
        std::string("#define MULTI_COORD\n#define HAS_ALPHA\n") + rgb::kVertexShader;
    const std::string sUserSampler =
        std::string("#define USER_SAMPLER\n#ifdef GL_ES\nprecision mediump float;\n#endif\n"
                    "vec4 sample2d(sampler2D tex, vec2 pos, int plane) { return texture2D(tex, pos); }\n") +
        rgb::kFragmentShader;
    const std::string sGamma = std::string("#define XYZ_GAMMA\n") + rgb::kFragmentShader;
    const std::string sMulti = std::string("#define MULTI_COORD\n") + rgb::kVertexShader;
    for (const auto &[sVertex, sFragment] :
         std::vector<std::pair<std::string, std::string>>{{sVertexAll, rgb::kFragmentShader},
                                                          {sMulti, sGamma},
                                                          {rgb::kVertexShader, sUserSampler},
                                                          {rgb::kVertexShader, sGamma}}) {
        RgbProgram program(&m_nOwner, sVertex.c_str(), sFragment.c_str());
        EXPECT_EQ(program.CreateGlslResource(k_program), 0) << sVertex << sFragment;
    }
}

TEST(RgbShaderSourcesTest, HaveTheirPrecisionLinesAndSwitches)
{
    for (const std::string sText : {rgb::kVertexShader, rgb::kFragmentShader}) {
        EXPECT_NE(sText.find("\nprecision mediump int;\nprecision mediump float;\n"), std::string::npos);
    }
    const std::string sVertex = rgb::kVertexShader;
    for (const char *pszSwitch : {"MULTI_COORD", "HAS_ALPHA", "v_TexCoords3 = a_TexCoords3"}) {
        EXPECT_NE(sVertex.find(pszSwitch), std::string::npos) << pszSwitch;
    }
    const std::string sFragment = rgb::kFragmentShader;
    for (const char *pszSwitch :
         {"#if __VERSION__ < 130\n#define texture texture2D\n#else\n#define texture2D texture\n#endif\n",
          "#define HAS_ALPHA\n", "#ifndef USER_SAMPLER\n", "#ifdef XYZ_GAMMA\n",
          "uniform vec2 u_texelSize[1];", "uniform vec2 u_textureSize[1];"}) {
        EXPECT_NE(sFragment.find(pszSwitch), std::string::npos) << pszSwitch;
    }
}

} // namespace
} // namespace xelttest
