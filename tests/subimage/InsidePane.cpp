#include "InsidePane.h"

#include "log/CLS_OmbrixApi.h"

#include <QHBoxLayout>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace xelttest {

InsidePane::InsidePane()
{
    connect(
        this, &CLS_ShaderYuvSubImage::signalUpdate, this, [this] { ++m_nUpdates; }, Qt::DirectConnection);
}

int InsidePane::takeUpdates()
{
    return m_nUpdates.exchange(0);
}

void InsideTest::SetUp()
{
    ASSERT_TRUE(CoreLog::instance().isPresent());
    ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0);
    CoreLog::instance().reset();
    m_pPane = std::make_unique<InsidePane>();
}

void InsideTest::TearDown()
{
    m_pPane.reset();
    m_pOtherWindow.reset();
    m_pWindow.reset();
}

void InsideTest::openWindow()
{
    m_pWindow = std::make_unique<QWidget>();
    m_pWitness = new InsidePane;
    auto *pLayout = new QHBoxLayout(m_pWindow.get());
    for (InsidePane *pPane : {m_pPane.get(), m_pWitness}) {
        pPane->setFixedSize(120, 90);
        pLayout->addWidget(pPane);
    }
    m_pWindow->show();
    ASSERT_TRUE(pump([&] { return m_pPane->isValid() && m_pWitness->isValid(); }));
    drainEvents();
    m_pPane->takeUpdates();
    CoreLog::instance().clear();
}

void InsideTest::moveToAnotherWindow()
{
    m_pOtherWindow = std::make_unique<QWidget>();
    (new QHBoxLayout(m_pOtherWindow.get()))->addWidget(m_pPane.get());
}

HostFrame InsideTest::frame(int nType, const QSize &size, uint32_t nSeed)
{
    const Planes planes = makePlanes(Pattern::Card, size.width(), size.height(), nSeed);
    HostFrame made = nType == VIDEO_DISPLAY_NV12 ? nv12Frame(planes) : yv12Frame(planes);
    made.desc.nDisplayType = nType;
    return made;
}

HostFrame InsideTest::withLength(HostFrame frame)
{
    frame.desc.nDataLen = static_cast<int32_t>(frame.vecBlocks[0].size());
    return frame;
}

::testing::AssertionResult InsideTest::shows(const HostFrame &frame)
{
    View view;
    view.widgetSize = m_pPane->size();
    view.dPixelRatio = scaleFactor();
    return imageMatches(m_pPane->picture(), renderPicture(bufferModel(frame.desc), view),
                        Tolerance{4.0, 0.8, 0.1});
}

InsideTest::GlNames InsideTest::glNames()
{
    GlNames names;
    for (const auto *pTexture : {m_pPane->m_pTexY.get(), m_pPane->m_pTexU.get(), m_pPane->m_pTexV.get()}) {
        if (pTexture != nullptr) {
            names.vecTextures.push_back(pTexture->textureId());
        }
    }
    names.nProgram = m_pPane->m_pProgram->programId();
    return names;
}

int InsideTest::existing(const GlNames &names)
{
    m_pWitness->makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = 0;
    if (gl.glIsProgram(names.nProgram) != 0) {
        // A deleted program lives on while it is current in a context.
        GLint nDeleted = 0;
        gl.glGetProgramiv(names.nProgram, GL_DELETE_STATUS, &nDeleted);
        nCount += nDeleted == 0 ? 1 : 0;
    }
    for (const GLuint nTexture : names.vecTextures) {
        nCount += gl.glIsTexture(nTexture) != 0 ? 1 : 0;
    }
    m_pWitness->doneCurrent();
    return nCount;
}

int InsideTest::textures()
{
    constexpr GLuint k_nHighestName = 1000;
    m_pWitness->makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = 0;
    for (GLuint nName = 1; nName <= k_nHighestName; ++nName) {
        nCount += gl.glIsTexture(nName) != 0 ? 1 : 0;
    }
    m_pWitness->doneCurrent();
    return nCount;
}

} // namespace xelttest
