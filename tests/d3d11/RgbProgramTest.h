// An RGB program in an offscreen context, its log and its messages.
#pragma once

#include "CoreLog.h"
#include "ErrorRecord.h"
#include "GlRecorder.h"
#include "OffscreenGl.h"
#include "QtMessages.h"
#include "TestEnvironment.h"
#include "d3d11/ColorMatrix.h"
#include "d3d11/RgbProgram.h"
#include "log/CLS_OmbrixApi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace xelttest {

using Messages = std::vector<QtMessage>;

// Where the reports come from, as the owner says.
constexpr LogPosition k_program{"CLS_D3D11EGL", "CLS_D3D11EGL::CreateGlslResource", 4711};
constexpr LogPosition k_texture{"CLS_D3D11EGL", "CLS_D3D11EGL::BindEglTextures", 4712};

inline std::string positionLine(const LogPosition &position)
{
    return std::string("file: ") + position.pszFile + ", func:" + position.pszFunction +
           ", line: " + std::to_string(position.nLine) + " ";
}

class RgbProgramTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0);
        CoreLog::instance().reset();
        m_messages.take();
    }
    void TearDown() override { CoreLog::instance().reset(); }

    // "u_c: 3" with the linker's location.
    static QtMessage locationLine(RgbProgram &program, const char *pszName)
    {
        return debugLine(std::string(pszName) + ": " +
                         std::to_string(program.Program()->uniformLocation(pszName)));
    }

    static bool isDesktop() { return glFlavour() == GlFlavour::Desktop; }

    OffscreenGl m_gl;
    QtMessages m_messages;
    GlRecorder m_recorder;
    int m_nOwner = 0;
};

} // namespace xelttest
