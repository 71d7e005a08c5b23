// Programs that cannot be bound.
#pragma once

namespace xelttest {

// While true, QOpenGLShaderProgram::bind() answers false to this program, and to the library where the program
// holds its objects.
bool &refuseProgramBind();

} // namespace xelttest
