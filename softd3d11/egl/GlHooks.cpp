#include "softd3d11/egl/EglBridge.h"
#include "softd3d11/egl/EntryPoints.h"
#include "softd3d11/egl/NamedFunction.h"
#include "softd3d11/egl/RealGl.h"

namespace softegl {
namespace {

void GL_APIENTRY DrawArrays(GLenum nMode, GLint nFirst, GLsizei nCount)
{
    EglBridge::Instance().ShowWrites();
    Gl().DrawArrays(nMode, nFirst, nCount);
}

void GL_APIENTRY DrawElements(GLenum nMode, GLsizei nCount, GLenum nType, const void *pIndices)
{
    EglBridge::Instance().ShowWrites();
    Gl().DrawElements(nMode, nCount, nType, pIndices);
}

void GL_APIENTRY ReadPixels(GLint nX, GLint nY, GLsizei nWidth, GLsizei nHeight, GLenum nFormat, GLenum nType,
                            void *pPixels)
{
    EglBridge::Instance().ShowWrites();
    Gl().ReadPixels(nX, nY, nWidth, nHeight, nFormat, nType, pPixels);
}

void GL_APIENTRY DeleteTextures(GLsizei nCount, const GLuint *pTextures)
{
    EglBridge::Instance().TexturesDeleted(nCount, pTextures);
    Gl().DeleteTextures(nCount, pTextures);
}

void GL_APIENTRY TexImage2D(GLenum nTarget, GLint nLevel, GLint nInternalFormat, GLsizei nWidth,
                            GLsizei nHeight, GLint nBorder, GLenum nFormat, GLenum nType, const void *pPixels)
{
    if (nTarget == GL_TEXTURE_2D && nLevel == 0) {
        EglBridge::Instance().BoundTextureRedefined();
    }
    Gl().TexImage2D(nTarget, nLevel, nInternalFormat, nWidth, nHeight, nBorder, nFormat, nType, pPixels);
}

void GL_APIENTRY CopyTexImage2D(GLenum nTarget, GLint nLevel, GLenum nInternalFormat, GLint nX, GLint nY,
                                GLsizei nWidth, GLsizei nHeight, GLint nBorder)
{
    if (nTarget == GL_TEXTURE_2D && nLevel == 0) {
        EglBridge::Instance().BoundTextureRedefined();
    }
    Gl().CopyTexImage2D(nTarget, nLevel, nInternalFormat, nX, nY, nWidth, nHeight, nBorder);
}

void GL_APIENTRY TexStorage2D(GLenum nTarget, GLsizei nLevels, GLenum nInternalFormat, GLsizei nWidth,
                              GLsizei nHeight)
{
    if (nTarget == GL_TEXTURE_2D) {
        EglBridge::Instance().BoundTextureRedefined();
    }
    Gl().TexStorage2D(nTarget, nLevels, nInternalFormat, nWidth, nHeight);
}

} // namespace

AnyFunction FindGlHook(const char *pszName) noexcept
{
    static const NamedFunction s_hooks[] = {
        Named("glCopyTexImage2D", CopyTexImage2D), Named("glDeleteTextures", DeleteTextures),
        Named("glDrawArrays", DrawArrays),         Named("glDrawElements", DrawElements),
        Named("glReadPixels", ReadPixels),         Named("glTexImage2D", TexImage2D),
        Named("glTexStorage2D", TexStorage2D),
    };
    return FindByName(s_hooks, pszName);
}

} // namespace softegl
