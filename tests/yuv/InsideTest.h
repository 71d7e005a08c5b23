// Renderers whose inside tests may look at, in a window of their own.
#pragma once

#include "CoreLog.h"
#include "Frames.h"
#include "HostWindow.h"
#include "ImageCompare.h"

#include <QHBoxLayout>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

namespace xelttest {

// What both renderers have; a derived class opens what one of them has for itself.
template <class Renderer> class InsidePaneOf : public Renderer
{
public:
    InsidePaneOf()
        : m_updates(QObject::connect(
              this, &Renderer::signalUpdate, this, [this] { ++m_nUpdates; }, Qt::DirectConnection))
    {
    }
    ~InsidePaneOf() override { QObject::disconnect(m_updates); } // the renderer emits to its end
    InsidePaneOf(const InsidePaneOf &) = delete;
    InsidePaneOf &operator=(const InsidePaneOf &) = delete;

    using Renderer::blReserveLastFrm;
    using Renderer::FrameBufferBytes;
    using Renderer::FreeFrameBuffer;
    using Renderer::m_bDestroyed;
    using Renderer::m_bExplicitLength;
    using Renderer::m_blGLReady;
    using Renderer::m_blUnInit;
    using Renderer::m_mutexFrame;
    using Renderer::m_nDisplayType;
    using Renderer::m_nDrawInfoKind;
    using Renderer::m_nFrameBufferSize;
    using Renderer::m_nLocDrawColor;
    using Renderer::m_nLocDrawFlag;
    using Renderer::m_nLocTexU;
    using Renderer::m_nLocTexV;
    using Renderer::m_nLocTexY;
    using Renderer::m_nVideoHeight;
    using Renderer::m_nVideoWidth;
    using Renderer::m_pD3D11EGL;
    using Renderer::m_pfnDrawInfo;
    using Renderer::m_pFrameBuffer;
    using Renderer::m_pPlaneUV;
    using Renderer::m_pPlaneY;
    using Renderer::m_pProgram;
    using Renderer::m_pTexU;
    using Renderer::m_pTexV;
    using Renderer::m_pTexY;
    using Renderer::m_rcDrawArea;
    using Renderer::m_rcEZoom;

    void *handle() { return static_cast<QWidget *>(this); }
    int32_t submit(const HostFrame &frame) { return this->ShowYuvFrame(&frame.desc, sizeof frame.desc); }
    // Paints now.
    QImage picture() { return xelttest::grab(handle()); }
    // Repaints that were asked for since the last call.
    int takeUpdates() { return m_nUpdates.exchange(0); }

private:
    std::atomic<int> m_nUpdates{0};
    const QMetaObject::Connection m_updates;
};

// GL names of a pane's textures and program.
struct GlNames
{
    std::vector<GLuint> vecTextures;
    GLuint nProgram = 0;
};
// How many of them exist, asked in the context of a pane that shares GL objects with theirs.
int existing(QOpenGLWidget &witness, const GlNames &names);
// Drivers may give a name again at once. Marked objects are told apart from later ones of the same name. A texture's
// mark outlives a paint, a program's does not.
void mark(QOpenGLWidget &witness, const GlNames &names);
int marked(QOpenGLWidget &witness, const GlNames &names);
// Textures with small names that exist, Qt's own among them.
int textures(QOpenGLWidget &witness);

// Loads the core library and resets its log.
void startInsideTest();
HostFrame insideFrame(int nType, const QSize &size, uint32_t nSeed);
::testing::AssertionResult showsFrame(const QImage &picture, const QSize &widgetSize, const HostFrame &frame);

template <class Pane> class InsideTestOf : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(startInsideTest());
        m_pPane = std::make_unique<Pane>();
    }
    void TearDown() override
    {
        m_pPane.reset();
        m_pOtherWindow.reset();
        m_pWindow.reset();
    }

    // A window with one pane, and a second pane that shares GL objects with the first and outlives it.
    void openWindow()
    {
        m_pWindow = std::make_unique<QWidget>();
        m_pWitness = new Pane;
        auto *pLayout = new QHBoxLayout(m_pWindow.get());
        for (Pane *pPane : {m_pPane.get(), m_pWitness}) {
            pPane->setFixedSize(120, 90);
            pLayout->addWidget(pPane);
        }
        m_pWindow->show();
        ASSERT_TRUE(pump([&] { return m_pPane->isValid() && m_pWitness->isValid(); }));
        drainEvents();
        m_pPane->takeUpdates();
        CoreLog::instance().clear();
    }
    Pane &pane() { return *m_pPane; }
    void destroyPane() { m_pPane.reset(); }
    void moveToAnotherWindow()
    {
        m_pOtherWindow = std::make_unique<QWidget>();
        (new QHBoxLayout(m_pOtherWindow.get()))->addWidget(m_pPane.get());
    }

    static HostFrame frame(int nType, const QSize &size = QSize(96, 64), uint32_t nSeed = 1)
    {
        return insideFrame(nType, size, nSeed);
    }
    static HostFrame withLength(HostFrame frame)
    {
        frame.desc.nDataLen = static_cast<int32_t>(frame.vecBlocks[0].size());
        return frame;
    }
    // Paints; whether the pane shows the frame.
    ::testing::AssertionResult shows(const HostFrame &frame)
    {
        return showsFrame(m_pPane->picture(), m_pPane->size(), frame);
    }

    GlNames glNames()
    {
        GlNames names;
        for (const QOpenGLTexture *pTexture :
             {m_pPane->m_pTexY.get(), m_pPane->m_pTexU.get(), m_pPane->m_pTexV.get()}) {
            if (pTexture != nullptr) {
                names.vecTextures.push_back(pTexture->textureId());
            }
        }
        names.nProgram = m_pPane->m_pProgram != nullptr ? m_pPane->m_pProgram->programId() : 0;
        return names;
    }
    int existing(const GlNames &names) { return xelttest::existing(*m_pWitness, names); }
    void mark(const GlNames &names) { xelttest::mark(*m_pWitness, names); }
    int marked(const GlNames &names) { return xelttest::marked(*m_pWitness, names); }
    int textures() { return xelttest::textures(*m_pWitness); }

    std::unique_ptr<QWidget> m_pWindow;
    std::unique_ptr<QWidget> m_pOtherWindow;
    Pane *m_pWitness = nullptr; // owned by m_pWindow
    std::unique_ptr<Pane> m_pPane;
};

} // namespace xelttest
