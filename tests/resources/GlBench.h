// Runs the embedded shaders: a current context of the flavour under test, and a float target whose values are
// read back, so that nothing is rounded or clamped on the way.
#pragma once

#include "ColourReference.h"
#include "PlaneTexture.h"

#include <gtest/gtest.h>

#include <QMatrix3x3>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace xelttest {

// The text of an embedded file.
QByteArray shaderText(const char *pszPath);
// What a program puts before a fragment shader of the set: the defines, precisions, and the include files.
QByteArray fragmentPrefix(const QList<QByteArray> &listDefines = {});

QMatrix3x3 toQt(const Matrix &matrix);

class GlBench : public ::testing::Test, protected QOpenGLFunctions
{
protected:
    void SetUp() override;
    // Any GL error is a failure.
    void TearDown() override;

    // Compiles and links without a word of the compiler, or says what is wrong and returns a program that is
    // not linked.
    std::unique_ptr<QOpenGLShaderProgram> link(const QByteArray &abVertex, const QByteArray &abFragment);

    using SetUniforms = std::function<void(QOpenGLShaderProgram &)>;
    // Runs GLSL statements that turn `vec4 value` into `vec4 result`, after declarations, once for each
    // input.
    std::vector<Rgba> evaluate(const QByteArray &abDeclarations, const QByteArray &abStatements,
                               const std::vector<Rgba> &vecInputs, const SetUniforms &setUniforms = {});
    // Fills a target of so many pixels with a quad; texture coordinates run from 0 to 1 as x and y do. aClip
    // is left, bottom, right, top. What is not drawn stays 0.25 in every channel.
    std::vector<Rgba> drawQuad(QOpenGLShaderProgram &program, int nWidth, int nHeight,
                               const std::array<float, 4> &aClip = {-1.0F, -1.0F, 1.0F, 1.0F});

private:
    class FloatTarget;

    QOpenGLContext m_context;
    QOffscreenSurface m_surface;
};

// Each channel within dTolerance, or one of OpenGL ES that was rounded to a half float within that rounding
// more, unless dTolerance is 0. Names the first that is not. NaN never is.
::testing::AssertionResult allNear(const std::vector<Rgba> &vecActual, const std::vector<Rgba> &vecExpected,
                                   double dTolerance);

// Pictures are drawn this many times their size, which puts samples on both sides of each texel's centre.
inline constexpr int k_nScale = 4;

// Half a level of an 8-bit display.
inline constexpr double k_dHalfLevel = 0.5 / 255.0;

} // namespace xelttest
