// What programs see of the library before they use it.
#include "EglFixture.h"

#include <QByteArrayList>

#include <cstring>
#include <dlfcn.h>

namespace xelttest {
namespace {

constexpr char k_szExtension[] = "EGL_ANGLE_d3d_share_handle_client_buffer";

QByteArrayList words(const char *pszText)
{
    QByteArrayList list = QByteArray(pszText).split(' ');
    list.removeAll(QByteArray());
    return list;
}

class SoftEglExtensionTest : public EglFixture
{
};

TEST_F(SoftEglExtensionTest, StandsBeforeTheRealLibrary)
{
    EXPECT_TRUE(softegl::Active());
}

TEST_F(SoftEglExtensionTest, AddsOneWordToTheDisplaysExtensions)
{
    softegl::HideExtension(true);
    QByteArrayList expected = words(eglQueryString(display(), EGL_EXTENSIONS));
    EXPECT_FALSE(expected.isEmpty());
    EXPECT_EQ(0, expected.count(k_szExtension));
    softegl::HideExtension(false);
    expected.append(k_szExtension);
    EXPECT_EQ(expected, words(eglQueryString(display(), EGL_EXTENSIONS)));
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
}

TEST_F(SoftEglExtensionTest, KeepsTheTextWhereItIs)
{
    const char *const pszText = eglQueryString(display(), EGL_EXTENSIONS);
    softegl::HideExtension(true);
    EXPECT_NE(pszText, eglQueryString(display(), EGL_EXTENSIONS));
    softegl::HideExtension(false);
    EXPECT_EQ(pszText, eglQueryString(display(), EGL_EXTENSIONS));
}

TEST_F(SoftEglExtensionTest, LeavesOtherStringsAlone)
{
    EXPECT_EQ(nullptr, std::strstr(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), k_szExtension));
    for (const EGLint nName : {EGL_VENDOR, EGL_VERSION, EGL_CLIENT_APIS}) {
        const char *const pszText = eglQueryString(display(), nName);
        ASSERT_NE(nullptr, pszText) << nName;
        EXPECT_NE('\0', pszText[0]) << nName;
        EXPECT_EQ(nullptr, std::strstr(pszText, k_szExtension)) << nName;
    }
    EXPECT_EQ(nullptr, eglQueryString(display(), EGL_BAD_SURFACE));
    EXPECT_EQ(EGL_BAD_PARAMETER, eglGetError());
}

TEST_F(SoftEglExtensionTest, RefusesSurfacesWhileTheExtensionIsHidden)
{
    SharedTexture texture(device(), QSize(4, 4));
    softegl::HideExtension(true);
    EXPECT_EQ(EGL_NO_SURFACE, makeSurface(texture));
    EXPECT_NE(EGL_SUCCESS, eglGetError());
    softegl::HideExtension(false);
    const EGLSurface hSurface = makeSurface(texture);
    EXPECT_NE(EGL_NO_SURFACE, hSurface);
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglExtensionTest, GivesOutItsOwnFunctionsByName)
{
    for (const char *pszName :
         {"eglBindAPI", "eglBindTexImage", "eglChooseConfig", "eglCreateContext",
          "eglCreatePbufferFromClientBuffer", "eglDestroyContext", "eglDestroySurface",
          "eglGetCurrentDisplay", "eglGetError", "eglGetProcAddress", "eglMakeCurrent", "eglQueryString",
          "eglQuerySurface", "eglReleaseTexImage", "eglReleaseThread", "eglTerminate"}) {
        EXPECT_EQ(dlsym(RTLD_DEFAULT, pszName), reinterpret_cast<void *>(eglGetProcAddress(pszName)))
            << pszName;
        Dl_info info{};
        ASSERT_NE(0, dladdr(reinterpret_cast<void *>(eglGetProcAddress(pszName)), &info)) << pszName;
        EXPECT_NE(nullptr, std::strstr(info.dli_fname, "libXeltSoftEgl")) << pszName;
    }
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "eglSwapBuffers"),
              reinterpret_cast<void *>(eglGetProcAddress("eglSwapBuffers")));
    EXPECT_NE(nullptr, eglGetProcAddress("glClear"));
}

} // namespace
} // namespace xelttest
