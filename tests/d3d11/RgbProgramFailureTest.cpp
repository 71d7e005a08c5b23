// The RGB program when the driver refuses it.
#include "RefuseBind.h"
#include "RgbProgramTest.h"

#include <cinttypes>
#include <cstdio>

namespace {

// Each stage compiles, but no vertex stage writes what this one reads.
const char k_pszUnlinkable[] = "#ifdef GL_ES\nprecision mediump float;\n#endif\n"
                               "varying vec4 v_Missing; void main() { gl_FragColor = v_Missing; }";

} // namespace

namespace xelttest {
namespace {

class RgbProgramFailureTest : public RgbProgramTest
{
protected:
    void TearDown() override
    {
        refuseProgramBind() = false;
        RgbProgramTest::TearDown();
    }

    std::string ownerAddress() const
    {
        char aText[32];
        std::snprintf(aText, sizeof aText, "%p", static_cast<const void *>(&m_nOwner));
        return aText;
    }

    // One error record and nothing of the dump.
    void expectReport(const std::string &sText)
    {
        const std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
        EXPECT_EQ(vecRecords.size(), 4u);
        EXPECT_TRUE(isErrorRecord(vecRecords, 0, "CLS_D3D11EGL", "CLS_D3D11EGL::CreateGlslResource", sText));
        EXPECT_EQ(vecRecords[2].sText, positionLine(k_program));
        for (const QtMessage &message : m_messages.take()) {
            EXPECT_NE(message.type, QtDebugMsg) << message;
        }
    }

    static void expectNoLocations(const RgbProgram &program)
    {
        EXPECT_EQ(program.Locations().nMatrix, -1);
        EXPECT_EQ(program.Locations().nDrawFlag, -1);
        EXPECT_TRUE(program.SamplerLocations().isEmpty());
    }
};

TEST_F(RgbProgramFailureTest, TextsThatDoNotLinkAreReported)
{
    RgbProgram program(&m_nOwner, rgb::kVertexShader, k_pszUnlinkable);
    EXPECT_EQ(program.CreateGlslResource(k_program), -1);
    ASSERT_NE(program.Program(), nullptr) << "it is kept";
    const std::string sLog = program.Program()->log().toStdString();
    EXPECT_NE(sLog.find("v_Missing"), std::string::npos) << sLog;
    expectReport("QSGMaterialShader: Shader compilation failed: " + sLog + " " + ownerAddress());
    expectNoLocations(program);
}

// A stage that does not compile is left out. OpenGL ES cannot link without it; desktop OpenGL has a fixed
// stage for it.
TEST_F(RgbProgramFailureTest, TextsThatDoNotCompileAreReportedByTheLinker)
{
    for (const bool blVertex : {true, false}) {
        CoreLog::instance().clear();
        m_messages.take();
        RgbProgram program(&m_nOwner, blVertex ? "void main() { nonsense; }" : rgb::kVertexShader,
                           blVertex ? rgb::kFragmentShader : "void main() { nonsense; }");
        if (isDesktop()) {
            EXPECT_EQ(program.CreateGlslResource(k_program), 0);
            EXPECT_TRUE(CoreLog::instance().records().empty());
            EXPECT_EQ(m_messages.take().front().type, QtWarningMsg) << "Qt says it";
            continue;
        }
        EXPECT_EQ(program.CreateGlslResource(k_program), -1);
        ASSERT_NE(program.Program(), nullptr);
        expectReport("QSGMaterialShader: Shader compilation failed: " +
                     program.Program()->log().toStdString() + " " + ownerAddress());
        expectNoLocations(program);
    }
}

// Deliberate: what could not be linked still counts as there.
TEST_F(RgbProgramFailureTest, TheNextCallFindsTheFailedProgram)
{
    RgbProgram program(&m_nOwner, rgb::kVertexShader, k_pszUnlinkable);
    ASSERT_EQ(program.CreateGlslResource(k_program), -1);
    CoreLog::instance().clear();
    m_messages.take();
    EXPECT_EQ(program.CreateGlslResource(k_program), 0);
    EXPECT_TRUE(CoreLog::instance().records().empty());
    EXPECT_EQ(m_messages.take(), Messages());
    EXPECT_FALSE(program.Bind());
    program.DestroyProgram();
    CoreLog::instance().clear();
    EXPECT_EQ(program.CreateGlslResource(k_program), -1) << "made anew, it fails anew";
    EXPECT_EQ(CoreLog::instance().errors().size(), 1u);
}

TEST_F(RgbProgramFailureTest, UniformsOfAFailedProgramGoNowhere)
{
    RgbProgram program(&m_nOwner, rgb::kVertexShader, k_pszUnlinkable);
    ASSERT_EQ(program.CreateGlslResource(k_program), -1);
    ColorMatrix colors;
    program.LoadColorUniforms(colors);
    program.SetMatrix(QMatrix4x4());
    program.SetDrawFlag(0);
    EXPECT_TRUE(colors.isValid());
}

TEST_F(RgbProgramFailureTest, AProgramThatCannotBeBoundIsReported)
{
    refuseProgramBind() = true;
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.CreateGlslResource(k_program), -1);
    ASSERT_NE(program.Program(), nullptr) << "it is kept";
    EXPECT_TRUE(program.Program()->isLinked());
    expectReport("QSGMaterialShader: Shader bind failed:" + program.Program()->log().toStdString());
    expectNoLocations(program);
}

} // namespace
} // namespace xelttest
