// A sub-image renderer whose inside tests may look at, in a window of its own.
#pragma once

#include "CoreLog.h"
#include "Frames.h"
#include "HostWindow.h"
#include "ImageCompare.h"
#include "yuv/CLS_ShaderYuvSubImage.h"

#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace xelttest {

class InsidePane : public CLS_ShaderYuvSubImage
{
public:
    InsidePane();

    using CLS_ShaderYuvSubImage::blReserveLastFrm;
    using CLS_ShaderYuvSubImage::FrameBufferBytes;
    using CLS_ShaderYuvSubImage::FreeFrameBuffer;
    using CLS_ShaderYuvSubImage::m_bDestroyed;
    using CLS_ShaderYuvSubImage::m_bExplicitLength;
    using CLS_ShaderYuvSubImage::m_blGLReady;
    using CLS_ShaderYuvSubImage::m_blUnInit;
    using CLS_ShaderYuvSubImage::m_mutexFrame;
    using CLS_ShaderYuvSubImage::m_nDisplayType;
    using CLS_ShaderYuvSubImage::m_nDrawInfoKind;
    using CLS_ShaderYuvSubImage::m_nFrameBufferSize;
    using CLS_ShaderYuvSubImage::m_nLocDrawColor;
    using CLS_ShaderYuvSubImage::m_nLocDrawFlag;
    using CLS_ShaderYuvSubImage::m_nLocTexU;
    using CLS_ShaderYuvSubImage::m_nLocTexV;
    using CLS_ShaderYuvSubImage::m_nLocTexY;
    using CLS_ShaderYuvSubImage::m_nVideoHeight;
    using CLS_ShaderYuvSubImage::m_nVideoWidth;
    using CLS_ShaderYuvSubImage::m_pD3D11EGL;
    using CLS_ShaderYuvSubImage::m_pfnDrawInfo;
    using CLS_ShaderYuvSubImage::m_pFrameBuffer;
    using CLS_ShaderYuvSubImage::m_pPlaneUV;
    using CLS_ShaderYuvSubImage::m_pPlaneY;
    using CLS_ShaderYuvSubImage::m_pProgram;
    using CLS_ShaderYuvSubImage::m_pTexU;
    using CLS_ShaderYuvSubImage::m_pTexV;
    using CLS_ShaderYuvSubImage::m_pTexY;
    using CLS_ShaderYuvSubImage::m_rcDrawArea;
    using CLS_ShaderYuvSubImage::m_rcEZoom;

    void *handle() { return static_cast<QWidget *>(this); }
    int32_t submit(const HostFrame &frame) { return ShowYuvFrame(&frame.desc, sizeof frame.desc); }
    // Paints now.
    QImage picture() { return xelttest::grab(handle()); }
    // Repaints that were asked for since the last call.
    int takeUpdates();

private:
    std::atomic<int> m_nUpdates{0};
};

class InsideTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // A window with one pane, and a second pane that shares GL objects with the first and outlives it.
    void openWindow();
    InsidePane &pane() { return *m_pPane; }
    void destroyPane() { m_pPane.reset(); }
    void moveToAnotherWindow();

    static HostFrame frame(int nType, const QSize &size = QSize(96, 64), uint32_t nSeed = 1);
    static HostFrame withLength(HostFrame frame);
    // Whether the pane shows the frame.
    ::testing::AssertionResult shows(const HostFrame &frame);

    // GL names of the pane's textures and program.
    struct GlNames
    {
        std::vector<GLuint> vecTextures;
        GLuint nProgram = 0;
    };
    GlNames glNames();
    // How many of them exist, asked in the other pane's context.
    int existing(const GlNames &names);
    // Textures with small names that exist, Qt's own among them.
    int textures();

    std::unique_ptr<QWidget> m_pWindow;
    std::unique_ptr<QWidget> m_pOtherWindow;
    InsidePane *m_pWitness = nullptr; // owned by m_pWindow
    std::unique_ptr<InsidePane> m_pPane;
};

} // namespace xelttest
