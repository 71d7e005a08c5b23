#include "GlRecorder.h"

#include "GlLookup.h"

#include <qopengl.h>

#include <cstdint>
#include <cstring>
#include <utility>

namespace {

using Function = xelttest::GlFunction;
using xelttest::GlRecorder;

GlRecorder *g_pCurrent = nullptr;

template <typename... Parts> void note(const Parts &...parts)
{
    if (g_pCurrent == nullptr) {
        return;
    }
    std::string sCall;
    const auto append = [&sCall](const auto &part) {
        if (!sCall.empty()) {
            sCall += ' ';
        }
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(part)>>) {
            sCall += std::to_string(part);
        } else {
            sCall += part;
        }
    };
    (append(parts), ...);
    g_pCurrent->add(sCall);
}

template <typename... Parts> void noteSurrounding(const Parts &...parts)
{
    if (g_pCurrent != nullptr && g_pCurrent->m_blSurroundings) {
        note(parts...);
    }
}

const char *targetName(GLenum nTarget)
{
    return nTarget == GL_ARRAY_BUFFER ? "array" : nTarget == GL_ELEMENT_ARRAY_BUFFER ? "element" : "other";
}

uintptr_t number(const void *pAddress)
{
    return reinterpret_cast<uintptr_t>(pAddress);
}

// One wrapper for each name under which a function is to be had: Variant tells the names apart.
template <int Variant> struct Wrappers
{
    static inline void (*genBuffers)(GLsizei, GLuint *) = nullptr;
    static inline void (*deleteBuffers)(GLsizei, const GLuint *) = nullptr;
    static inline void (*bindBuffer)(GLenum, GLuint) = nullptr;
    static inline void (*bufferData)(GLenum, intptr_t, const void *, GLenum) = nullptr;
    static inline void (*bufferSubData)(GLenum, intptr_t, intptr_t, const void *) = nullptr;
    static inline void *(*mapBuffer)(GLenum, GLenum) = nullptr;
    static inline void *(*mapBufferRange)(GLenum, intptr_t, intptr_t, GLbitfield) = nullptr;
    static inline GLboolean (*unmapBuffer)(GLenum) = nullptr;
    static inline void (*genVertexArrays)(GLsizei, GLuint *) = nullptr;
    static inline void (*deleteVertexArrays)(GLsizei, const GLuint *) = nullptr;
    static inline void (*bindVertexArray)(GLuint) = nullptr;
    static inline void (*vertexAttribPointer)(GLuint, GLint, GLenum, GLboolean, GLsizei,
                                              const void *) = nullptr;
    static inline void (*enableVertexAttribArray)(GLuint) = nullptr;
    static inline void (*disableVertexAttribArray)(GLuint) = nullptr;
    static inline void (*drawArrays)(GLenum, GLint, GLsizei) = nullptr;
    static inline void (*drawElements)(GLenum, GLsizei, GLenum, const void *) = nullptr;
    static inline void (*getIntegerv)(GLenum, GLint *) = nullptr;
    static inline void (*viewport)(GLint, GLint, GLsizei, GLsizei) = nullptr;
    static inline void (*enable)(GLenum) = nullptr;
    static inline void (*disable)(GLenum) = nullptr;
    static inline void (*blendFuncSeparate)(GLenum, GLenum, GLenum, GLenum) = nullptr;
    static inline void (*finish)() = nullptr;
    static inline void (*activeTexture)(GLenum) = nullptr;
    static inline void (*bindTexture)(GLenum, GLuint) = nullptr;
    static inline void (*texParameteri)(GLenum, GLenum, GLint) = nullptr;
    static inline void (*texImage2D)(GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum,
                                     const void *) = nullptr;
    static inline void (*texSubImage2D)(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum,
                                        const void *) = nullptr;
    static inline void (*pixelStorei)(GLenum, GLint) = nullptr;
    static inline void (*lineWidth)(GLfloat) = nullptr;
    static inline void (*uniform3f)(GLint, GLfloat, GLfloat, GLfloat) = nullptr;
    static inline void (*useProgram)(GLuint) = nullptr;
    static inline void (*uniform1i)(GLint, GLint) = nullptr;
    static inline void (*uniform1f)(GLint, GLfloat) = nullptr;
    static inline void (*uniform1fv)(GLint, GLsizei, const GLfloat *) = nullptr;
    static inline void (*uniformMatrix4fv)(GLint, GLsizei, GLboolean, const GLfloat *) = nullptr;

    static void onGenBuffers(GLsizei n, GLuint *pNames)
    {
        note("create buffer");
        if (g_pCurrent != nullptr && g_pCurrent->m_blFailBuffers) {
            std::memset(pNames, 0, sizeof(GLuint) * static_cast<size_t>(n));
            return;
        }
        genBuffers(n, pNames);
    }
    static void onDeleteBuffers(GLsizei n, const GLuint *pNames)
    {
        note("delete buffer");
        deleteBuffers(n, pNames);
    }
    static void onBindBuffer(GLenum nTarget, GLuint nName)
    {
        note(nName != 0 ? "bind" : "unbind", targetName(nTarget));
        bindBuffer(nTarget, nName);
    }
    static void onBufferData(GLenum nTarget, intptr_t nSize, const void *pBytes, GLenum nUsage)
    {
        note("data", targetName(nTarget), nSize);
        bufferData(nTarget, nSize, pBytes, nUsage);
    }
    static void onBufferSubData(GLenum nTarget, intptr_t nOffset, intptr_t nSize, const void *pBytes)
    {
        note("write", targetName(nTarget), nOffset, nSize);
        bufferSubData(nTarget, nOffset, nSize, pBytes);
    }
    static void *onMapBuffer(GLenum nTarget, GLenum nAccess)
    {
        note("map", targetName(nTarget));
        return g_pCurrent != nullptr && g_pCurrent->m_blFailMap ? nullptr : mapBuffer(nTarget, nAccess);
    }
    static void *onMapBufferRange(GLenum nTarget, intptr_t nOffset, intptr_t nLength, GLbitfield nAccess)
    {
        note("map", targetName(nTarget));
        return g_pCurrent != nullptr && g_pCurrent->m_blFailMap
                   ? nullptr
                   : mapBufferRange(nTarget, nOffset, nLength, nAccess);
    }
    static GLboolean onUnmapBuffer(GLenum nTarget)
    {
        note("unmap", targetName(nTarget));
        return unmapBuffer(nTarget);
    }
    static void onGenVertexArrays(GLsizei n, GLuint *pNames)
    {
        note("create vao");
        if (g_pCurrent != nullptr && g_pCurrent->m_blFailVertexArrays) {
            std::memset(pNames, 0, sizeof(GLuint) * static_cast<size_t>(n));
            return;
        }
        genVertexArrays(n, pNames);
    }
    static void onDeleteVertexArrays(GLsizei n, const GLuint *pNames)
    {
        note("delete vao");
        deleteVertexArrays(n, pNames);
    }
    static void onBindVertexArray(GLuint nName)
    {
        note(nName != 0 ? "bind vao" : "unbind vao");
        bindVertexArray(nName);
    }
    static void onVertexAttribPointer(GLuint nIndex, GLint nSize, GLenum nType, GLboolean blNormalize,
                                      GLsizei nStride, const void *pAddress)
    {
        note("pointer", nIndex, "size", nSize, "type", nType, "norm", static_cast<int>(blNormalize), "stride",
             nStride, "at", number(pAddress));
        vertexAttribPointer(nIndex, nSize, nType, blNormalize, nStride, pAddress);
    }
    static void onEnableVertexAttribArray(GLuint nIndex)
    {
        note("enable", nIndex);
        enableVertexAttribArray(nIndex);
    }
    static void onDisableVertexAttribArray(GLuint nIndex)
    {
        note("disable", nIndex);
        disableVertexAttribArray(nIndex);
    }
    static void onDrawArrays(GLenum nMode, GLint nFirst, GLsizei nCount)
    {
        note("arrays", nMode, nFirst, nCount);
        drawArrays(nMode, nFirst, nCount);
    }
    static void onDrawElements(GLenum nMode, GLsizei nCount, GLenum nType, const void *pAddress)
    {
        note("elements", nMode, nCount, nType, "at", number(pAddress));
        drawElements(nMode, nCount, nType, pAddress);
    }
    static void onGetIntegerv(GLenum nName, GLint *pnValue)
    {
        note("query", nName);
        getIntegerv(nName, pnValue);
        if (nName == GL_MAX_TEXTURE_SIZE && g_pCurrent != nullptr && g_pCurrent->m_nMaxTextureSize > 0) {
            *pnValue = g_pCurrent->m_nMaxTextureSize;
        }
    }
    static void onViewport(GLint x, GLint y, GLsizei nWidth, GLsizei nHeight)
    {
        noteSurrounding("viewport", x, y, nWidth, nHeight);
        viewport(x, y, nWidth, nHeight);
    }
    static void onEnable(GLenum nCapability)
    {
        noteSurrounding("switch on", nCapability);
        enable(nCapability);
    }
    static void onDisable(GLenum nCapability)
    {
        noteSurrounding("switch off", nCapability);
        disable(nCapability);
    }
    static void onBlendFuncSeparate(GLenum nSource, GLenum nTarget, GLenum nSourceAlpha, GLenum nTargetAlpha)
    {
        noteSurrounding("blend", nSource, nTarget, nSourceAlpha, nTargetAlpha);
        blendFuncSeparate(nSource, nTarget, nSourceAlpha, nTargetAlpha);
    }
    static void onFinish()
    {
        noteSurrounding("finish");
        finish();
    }
    static void onActiveTexture(GLenum nUnit)
    {
        noteSurrounding("unit", nUnit - GL_TEXTURE0);
        activeTexture(nUnit);
    }
    static void onBindTexture(GLenum nTarget, GLuint nName)
    {
        noteSurrounding("texture", nTarget, nName);
        bindTexture(nTarget, nName);
    }
    static void onTexParameteri(GLenum nTarget, GLenum nName, GLint nValue)
    {
        noteSurrounding("parameter", nTarget, nName, nValue);
        texParameteri(nTarget, nName, nValue);
    }
    static void onTexImage2D(GLenum nTarget, GLint nLevel, GLint nInternal, GLsizei nWidth, GLsizei nHeight,
                             GLint nBorder, GLenum nFormat, GLenum nType, const void *pPixels)
    {
        noteSurrounding("image", nTarget, nLevel, nInternal, nWidth, nHeight, nBorder, nFormat, nType, "at",
                        number(pPixels));
        texImage2D(nTarget, nLevel, nInternal, nWidth, nHeight, nBorder, nFormat, nType, pPixels);
    }
    static void onTexSubImage2D(GLenum nTarget, GLint nLevel, GLint x, GLint y, GLsizei nWidth,
                                GLsizei nHeight, GLenum nFormat, GLenum nType, const void *pPixels)
    {
        noteSurrounding("part", nTarget, nLevel, x, y, nWidth, nHeight, nFormat, nType);
        texSubImage2D(nTarget, nLevel, x, y, nWidth, nHeight, nFormat, nType, pPixels);
    }
    static void onPixelStorei(GLenum nName, GLint nValue)
    {
        noteSurrounding("store", nName, nValue);
        pixelStorei(nName, nValue);
    }
    static void onLineWidth(GLfloat fWidth)
    {
        noteSurrounding("line", fWidth);
        lineWidth(fWidth);
    }
    static void onUniform3f(GLint nLocation, GLfloat fX, GLfloat fY, GLfloat fZ)
    {
        noteSurrounding("uniform", nLocation, "is", fX, fY, fZ);
        uniform3f(nLocation, fX, fY, fZ);
    }
    static void onUseProgram(GLuint nProgram)
    {
        noteSurrounding("program", nProgram);
        useProgram(nProgram);
    }
    static void onUniform1i(GLint nLocation, GLint nValue)
    {
        noteSurrounding("uniform", nLocation, "is", nValue);
        uniform1i(nLocation, nValue);
    }
    static void onUniform1f(GLint nLocation, GLfloat fValue)
    {
        noteSurrounding("uniform", nLocation, "is", fValue);
        uniform1f(nLocation, fValue);
    }
    static void onUniform1fv(GLint nLocation, GLsizei nCount, const GLfloat *pfValues)
    {
        for (GLsizei i = 0; i < nCount; ++i) {
            noteSurrounding("uniform", nLocation, "is", pfValues[i]);
        }
        uniform1fv(nLocation, nCount, pfValues);
    }
    static void onUniformMatrix4fv(GLint nLocation, GLsizei nCount, GLboolean blTurned, const GLfloat *pf)
    {
        noteSurrounding("matrix", nLocation, blTurned != GL_FALSE ? "turned" : "is", pf[0], pf[1], pf[2],
                        pf[3], pf[4], pf[5], pf[6], pf[7], pf[8], pf[9], pf[10], pf[11], pf[12], pf[13],
                        pf[14], pf[15]);
        uniformMatrix4fv(nLocation, nCount, blTurned, pf);
    }
};

template <typename Type> Function replace(Type &pfnReal, Function pfnFound, Type pfnWrapper)
{
    pfnReal = reinterpret_cast<Type>(pfnFound);
    return reinterpret_cast<Function>(pfnWrapper);
}

template <int Variant> Function wrap(const std::string &sName, Function pfnFound)
{
    using W = Wrappers<Variant>;
    // clang-format off
    if (sName == "glGenBuffers") return replace(W::genBuffers, pfnFound, &W::onGenBuffers);
    if (sName == "glDeleteBuffers") return replace(W::deleteBuffers, pfnFound, &W::onDeleteBuffers);
    if (sName == "glBindBuffer") return replace(W::bindBuffer, pfnFound, &W::onBindBuffer);
    if (sName == "glBufferData") return replace(W::bufferData, pfnFound, &W::onBufferData);
    if (sName == "glBufferSubData") return replace(W::bufferSubData, pfnFound, &W::onBufferSubData);
    if (sName == "glMapBuffer") return replace(W::mapBuffer, pfnFound, &W::onMapBuffer);
    if (sName == "glMapBufferRange") return replace(W::mapBufferRange, pfnFound, &W::onMapBufferRange);
    if (sName == "glUnmapBuffer") return replace(W::unmapBuffer, pfnFound, &W::onUnmapBuffer);
    if (sName == "glGenVertexArrays") return replace(W::genVertexArrays, pfnFound, &W::onGenVertexArrays);
    if (sName == "glDeleteVertexArrays") return replace(W::deleteVertexArrays, pfnFound, &W::onDeleteVertexArrays);
    if (sName == "glBindVertexArray") return replace(W::bindVertexArray, pfnFound, &W::onBindVertexArray);
    if (sName == "glVertexAttribPointer") return replace(W::vertexAttribPointer, pfnFound, &W::onVertexAttribPointer);
    if (sName == "glEnableVertexAttribArray") return replace(W::enableVertexAttribArray, pfnFound, &W::onEnableVertexAttribArray);
    if (sName == "glDisableVertexAttribArray") return replace(W::disableVertexAttribArray, pfnFound, &W::onDisableVertexAttribArray);
    if (sName == "glDrawArrays") return replace(W::drawArrays, pfnFound, &W::onDrawArrays);
    if (sName == "glDrawElements") return replace(W::drawElements, pfnFound, &W::onDrawElements);
    if (sName == "glGetIntegerv") return replace(W::getIntegerv, pfnFound, &W::onGetIntegerv);
    if (sName == "glViewport") return replace(W::viewport, pfnFound, &W::onViewport);
    if (sName == "glEnable") return replace(W::enable, pfnFound, &W::onEnable);
    if (sName == "glDisable") return replace(W::disable, pfnFound, &W::onDisable);
    if (sName == "glBlendFuncSeparate") return replace(W::blendFuncSeparate, pfnFound, &W::onBlendFuncSeparate);
    if (sName == "glFinish") return replace(W::finish, pfnFound, &W::onFinish);
    if (sName == "glActiveTexture") return replace(W::activeTexture, pfnFound, &W::onActiveTexture);
    if (sName == "glBindTexture") return replace(W::bindTexture, pfnFound, &W::onBindTexture);
    if (sName == "glTexParameteri") return replace(W::texParameteri, pfnFound, &W::onTexParameteri);
    if (sName == "glTexImage2D") return replace(W::texImage2D, pfnFound, &W::onTexImage2D);
    if (sName == "glTexSubImage2D") return replace(W::texSubImage2D, pfnFound, &W::onTexSubImage2D);
    if (sName == "glPixelStorei") return replace(W::pixelStorei, pfnFound, &W::onPixelStorei);
    if (sName == "glLineWidth") return replace(W::lineWidth, pfnFound, &W::onLineWidth);
    if (sName == "glUniform3f") return replace(W::uniform3f, pfnFound, &W::onUniform3f);
    if (sName == "glUseProgram") return replace(W::useProgram, pfnFound, &W::onUseProgram);
    if (sName == "glUniform1i") return replace(W::uniform1i, pfnFound, &W::onUniform1i);
    if (sName == "glUniform1f") return replace(W::uniform1f, pfnFound, &W::onUniform1f);
    if (sName == "glUniform1fv") return replace(W::uniform1fv, pfnFound, &W::onUniform1fv);
    if (sName == "glUniformMatrix4fv") return replace(W::uniformMatrix4fv, pfnFound, &W::onUniformMatrix4fv);
    // clang-format on
    return pfnFound;
}

bool cutSuffix(std::string &sName, const char *pszSuffix)
{
    const size_t nLength = std::strlen(pszSuffix);
    if (sName.size() <= nLength || sName.compare(sName.size() - nLength, nLength, pszSuffix) != 0) {
        return false;
    }
    sName.resize(sName.size() - nLength);
    return true;
}

} // namespace

namespace xelttest {

GlFunction wrapGl(const char *pszName, Function pfnFound)
{
    std::string sName = pszName;
    if (pfnFound == nullptr) {
        return nullptr;
    }
    if (cutSuffix(sName, "OES")) {
        return wrap<1>(sName, pfnFound);
    }
    if (cutSuffix(sName, "ARB")) {
        return wrap<2>(sName, pfnFound);
    }
    if (cutSuffix(sName, "APPLE")) {
        return wrap<3>(sName, pfnFound);
    }
    return wrap<0>(sName, pfnFound);
}

GlRecorder::GlRecorder()
{
    g_pCurrent = this;
}

GlRecorder::~GlRecorder()
{
    g_pCurrent = nullptr;
}

std::vector<std::string> GlRecorder::take()
{
    return std::exchange(m_vecCalls, {});
}

GlRecorder *GlRecorder::current()
{
    return g_pCurrent;
}

} // namespace xelttest
