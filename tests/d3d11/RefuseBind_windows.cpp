#include "RefuseBind.h"

#include "ImportTable.h"

#include <QOpenGLShaderProgram>

#include <cstdlib>

namespace {

#ifdef _MSC_VER
constexpr char k_szBind[] = "?bind@QOpenGLShaderProgram@@QEAA_NXZ";
#else
constexpr char k_szBind[] = "_ZN20QOpenGLShaderProgram4bindEv";
#endif

using Bind = bool (*)(QOpenGLShaderProgram *);
Bind g_pfnBind = nullptr;
bool g_blRefuse = false;

bool onBind(QOpenGLShaderProgram *pProgram)
{
    return !g_blRefuse && g_pfnBind(pProgram);
}

} // namespace

bool &xelttest::refuseProgramBind()
{
    if (g_pfnBind == nullptr) {
        g_pfnBind = reinterpret_cast<Bind>(replaceImport("", k_szBind, reinterpret_cast<void *>(&onBind)));
        if (g_pfnBind == nullptr) {
            std::abort();
        }
    }
    return g_blRefuse;
}
