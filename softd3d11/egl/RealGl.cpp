#include "softd3d11/egl/RealGl.h"

#include "softd3d11/egl/RealEgl.h"

namespace softegl {
namespace {

template <typename Function> void Find(const char *pszName, Function &function) noexcept
{
    function = reinterpret_cast<Function>(Real().GetProcAddress(pszName));
}

RealGl Load() noexcept
{
    RealGl gl{};
    Find("glBindBuffer", gl.BindBuffer);
    Find("glBindTexture", gl.BindTexture);
    Find("glCopyTexImage2D", gl.CopyTexImage2D);
    Find("glDeleteTextures", gl.DeleteTextures);
    Find("glDrawArrays", gl.DrawArrays);
    Find("glDrawElements", gl.DrawElements);
    Find("glGetError", gl.GetError);
    Find("glGetIntegerv", gl.GetIntegerv);
    Find("glGetString", gl.GetString);
    Find("glGetStringi", gl.GetStringi);
    Find("glGetTexParameteriv", gl.GetTexParameteriv);
    Find("glPixelStorei", gl.PixelStorei);
    Find("glReadPixels", gl.ReadPixels);
    Find("glTexImage2D", gl.TexImage2D);
    Find("glTexStorage2D", gl.TexStorage2D);
    Find("glTexSubImage2D", gl.TexSubImage2D);
    return gl;
}

} // namespace

const RealGl &Gl() noexcept
{
    static const RealGl s_gl = Load();
    return s_gl;
}

} // namespace softegl
