// Vertex and index buffers of the geometry renderer: what is made, written and made anew.
#include "GeometryRendererTest.h"

#include <QOpenGLExtraFunctions>

#include <cstring>

namespace xelttest {
namespace {

class GeometryBuffersTest : public GeometryRendererTest
{
protected:
    void SetUp() override
    {
        m_renderer.setFeatures(m_renderer.features() & ~GeometryRenderer::UseVertexArray);
    }

    // What the buffer holds that the draws read from.
    QByteArray contents(GLenum nTarget, int nSize)
    {
        QOpenGLExtraFunctions &gl = *m_gl.context().extraFunctions();
        GLint nName = 0;
        QByteArray abBytes;
        gl.glGetIntegerv(
            nTarget == GL_ARRAY_BUFFER ? GL_ARRAY_BUFFER_BINDING : GL_ELEMENT_ARRAY_BUFFER_BINDING, &nName);
        EXPECT_EQ(nName, 0) << "nothing stays bound after an update";
        gl.glBindBuffer(nTarget, m_nNewestBuffer);
        const void *pMapped = gl.glMapBufferRange(nTarget, 0, nSize, GL_MAP_READ_BIT);
        if (pMapped != nullptr) {
            abBytes = QByteArray(static_cast<const char *>(pMapped), nSize);
            gl.glUnmapBuffer(nTarget);
        }
        gl.glBindBuffer(nTarget, 0);
        m_recorder.take();
        return abBytes;
    }

    // Buffer names count up from 1 in a fresh context.
    void findNewestBuffer()
    {
        m_nNewestBuffer = 0;
        for (GLuint nName = 1; nName < 32; ++nName) {
            if (m_gl.gl().glIsBuffer(nName) == GL_TRUE) {
                m_nNewestBuffer = nName;
            }
        }
        ASSERT_NE(m_nNewestBuffer, 0u);
    }

    GLuint m_nNewestBuffer = 0;
};

// An update of the index buffer at the size that it has already.
Calls indexRewrite(bool blMapped, int nSize)
{
    return blMapped ? Calls{"bind element", "map element", "unmap element", "unbind element"}
                    : Calls{"bind element", "write element 0 " + std::to_string(nSize), "unbind element"};
}

const Calls k_vecVertexUpload{"bind array", "data array 64", "unbind array"};

TEST_F(GeometryBuffersTest, StartsWithAllFeaturesAndNothingMade)
{
    const GeometryRenderer fresh;
    EXPECT_EQ(fresh.features(), 0x10007u);
    EXPECT_TRUE(fresh.needsUpdate());
    EXPECT_EQ(fresh.geometry(), nullptr);
    EXPECT_EQ(m_recorder.take(), Calls());
}

TEST_F(GeometryBuffersTest, TheFirstUpdateMakesAndFillsTheVertexBuffer)
{
    EXPECT_EQ(update(quad()), Calls{"create buffer"} + k_vecVertexUpload);
    const Messages vecMessages = m_messages.take();
    EXPECT_EQ(vecMessages, (Messages{debugLine("creating VBO..."), debugLine("vao updated")}));
    for (const QtMessage &message : vecMessages) {
        EXPECT_FALSE(message.blHasPosition) << message;
    }
    EXPECT_FALSE(m_renderer.needsUpdate());
    findNewestBuffer();
    EXPECT_EQ(contents(GL_ARRAY_BUFFER, 64), quad()->vertexData);
}

TEST_F(GeometryBuffersTest, EachUpdateReallocatesTheVertexBuffer)
{
    update(quad());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(update(quad()), k_vecVertexUpload);
        EXPECT_EQ(m_messages.take(), Messages());
    }
    auto pTwoTextures = std::make_unique<TexturedGeometry>();
    pTwoTextures->setTextureCount(2);
    pTwoTextures->create();
    EXPECT_EQ(update(std::move(pTwoTextures)), (Calls{"bind array", "data array 96", "unbind array"}));
}

// Only a size of 0 equals the recorded one, which never grows.
TEST_F(GeometryBuffersTest, EmptyVertexDataIsWrittenAndNotAllocated)
{
    const auto empty = [] {
        auto pGeometry = std::make_unique<FreeGeometry>();
        pGeometry->vertexCount = 0;
        return pGeometry;
    };
    const Calls vecWrite = isDesktop() ? Calls{"bind array", "map array", "write array 0 0", "unbind array"}
                                       : Calls{"bind array", "write array 0 0", "unbind array"};
    EXPECT_EQ(update(empty()), Calls{"create buffer"} + vecWrite) << "nothing to map in an empty buffer";
    EXPECT_EQ(update(quad()), k_vecVertexUpload);
    EXPECT_EQ(update(quad()), k_vecVertexUpload);
    update(empty());
    EXPECT_EQ(update(quad()), k_vecVertexUpload);
}

TEST_F(GeometryBuffersTest, WithoutIndicesNoIndexBufferIsMade)
{
    for (const uint32_t nFeatures : {0x10007u, 0x2u, 0x3u, 0x10006u}) {
        GeometryRenderer renderer;
        renderer.setFeatures(nFeatures);
        m_recorder.take();
        m_messages.take();
        renderer.updateGeometry(quad());
        for (const std::string &sCall : m_recorder.take()) {
            EXPECT_EQ(sCall.find("element"), std::string::npos) << sCall;
        }
        for (const QtMessage &message : m_messages.take()) {
            EXPECT_EQ(message.sText.find("IBO"), std::string::npos) << message;
        }
    }
}

TEST_F(GeometryBuffersTest, IndicesMakeAnIndexBufferBeforeTheVertexBuffer)
{
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 3})),
              (Calls{"create buffer", "bind element", "data element 8", "unbind element", "create buffer"} +
               k_vecVertexUpload));
    EXPECT_EQ(m_messages.take(), (Messages{debugLine("creating IBO..."), debugLine("creating VBO..."),
                                           debugLine("vao updated")}));
}

TEST_F(GeometryBuffersTest, IndicesOfTheSameSizeAreRewrittenInPlace)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer | GeometryRenderer::MapBuffers);
    update(indexedQuad({0, 1, 2, 3}));
    findNewestBuffer();
    EXPECT_EQ(contents(GL_ELEMENT_ARRAY_BUFFER, 8), indexBytes({0, 1, 2, 3}));
    EXPECT_EQ(update(indexedQuad({3, 2, 1, 0})), indexRewrite(isDesktop(), 8));
    EXPECT_EQ(contents(GL_ELEMENT_ARRAY_BUFFER, 8), indexBytes({3, 2, 1, 0}));
    EXPECT_EQ(m_messages.take(), Messages());
}

TEST_F(GeometryBuffersTest, WithoutTheFeatureNothingIsMapped)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer);
    update(indexedQuad({0, 1, 2, 3}));
    findNewestBuffer();
    EXPECT_EQ(update(indexedQuad({3, 2, 1, 0})), indexRewrite(false, 8));
    EXPECT_EQ(contents(GL_ELEMENT_ARRAY_BUFFER, 8), indexBytes({3, 2, 1, 0}));
}

TEST_F(GeometryBuffersTest, AFailedMapIsWrittenInstead)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer | GeometryRenderer::MapBuffers);
    update(indexedQuad({0, 1, 2, 3}));
    findNewestBuffer();
    m_recorder.m_blFailMap = true;
    EXPECT_EQ(update(indexedQuad({3, 2, 1, 0})),
              isDesktop() ? (Calls{"bind element", "map element", "write element 0 8", "unbind element"})
                          : indexRewrite(false, 8));
    m_recorder.m_blFailMap = false;
    EXPECT_EQ(contents(GL_ELEMENT_ARRAY_BUFFER, 8), indexBytes({3, 2, 1, 0}));
}

TEST_F(GeometryBuffersTest, IndicesOfAnotherSizeReallocateOnce)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer | GeometryRenderer::MapBuffers);
    update(indexedQuad({0, 1, 2, 3}));
    const Calls vecAllocation{"bind element", "data element 12", "unbind element"};
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 2, 1, 3})), vecAllocation);
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 2, 1, 3})), indexRewrite(isDesktop(), 12))
        << "the size is recorded";
}

TEST_F(GeometryBuffersTest, TheSizeFollowsTheIndexType)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer);
    auto pBytes = quad();
    pBytes->indexType = GL_UNSIGNED_BYTE;
    pBytes->indexCount = 3;
    pBytes->indexData = QByteArray("\0\1\2", 3);
    EXPECT_EQ(update(std::move(pBytes)),
              (Calls{"create buffer", "bind element", "data element 3", "unbind element"}));
    auto pWide = quad();
    pWide->indexType = GL_UNSIGNED_INT;
    pWide->indexCount = 3;
    pWide->indexData = QByteArray(12, '\0');
    EXPECT_EQ(update(std::move(pWide)), (Calls{"bind element", "data element 12", "unbind element"}));
}

TEST_F(GeometryBuffersTest, AnIndexBufferStaysWhenIndicesGo)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer | GeometryRenderer::MapBuffers);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(update(quad()), (Calls{"bind element", "data element 0", "unbind element"}));
    EXPECT_EQ(update(quad()),
              isDesktop() ? (Calls{"bind element", "map element", "write element 0 0", "unbind element"})
                          : (Calls{"bind element", "write element 0 0", "unbind element"}));
    EXPECT_EQ(update(indexedQuad({0, 1})), (Calls{"bind element", "data element 4", "unbind element"}));
}

TEST_F(GeometryBuffersTest, FeaturesAreAskedBeforeABufferIsMade)
{
    m_renderer.setFeatures(GeometryRenderer::UseIndexBuffer);
    EXPECT_EQ(update(quad()), Calls());
    m_renderer.setFeatures(GeometryRenderer::UseVertexBuffer);
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 3})), Calls{"create buffer"} + k_vecVertexUpload);
    m_renderer.setFeatures(0);
    EXPECT_EQ(update(quad()), k_vecVertexUpload) << "what exists is kept up to date";
}

TEST_F(GeometryBuffersTest, ABufferThatCannotBeMadeIsReportedEachTime)
{
    m_recorder.m_blFailBuffers = true;
    const Messages vecBoth{debugLine("creating IBO..."), debugLine("IBO create error"),
                           debugLine("creating VBO..."), warningLine("VBO create error")};
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 3})), (Calls{"create buffer", "create buffer"}));
    EXPECT_EQ(m_messages.take(), (vecBoth + Messages{debugLine("vao updated")}));
    EXPECT_EQ(update(indexedQuad({0, 1, 2, 3})), (Calls{"create buffer", "create buffer"}));
    EXPECT_EQ(m_messages.take(), vecBoth);
    m_recorder.m_blFailBuffers = false;
    EXPECT_EQ(update(quad()), Calls{"create buffer"} + k_vecVertexUpload);
}

// Data that is shorter than the counts say is drawn as zeros.
TEST_F(GeometryBuffersTest, ShortDataIsFilledUp)
{
    auto pGeometry = std::make_unique<FreeGeometry>();
    pGeometry->vertexCount = 4;
    pGeometry->vertexData = QByteArray(10, 'v');
    EXPECT_EQ(update(std::move(pGeometry)), Calls{"create buffer"} + k_vecVertexUpload);
    findNewestBuffer();
    EXPECT_EQ(contents(GL_ARRAY_BUFFER, 64), QByteArray(10, 'v') + QByteArray(54, '\0'));

    auto pShortIndices = indexedQuad({7});
    pShortIndices->indexCount = 3;
    update(std::move(pShortIndices));
    findNewestBuffer();
    EXPECT_EQ(contents(GL_ELEMENT_ARRAY_BUFFER, 6), indexBytes({7, 0, 0}));
}

TEST_F(GeometryBuffersTest, TheRendererOwnsItsGeometry)
{
    struct Watched : FreeGeometry
    {
        explicit Watched(int &nAlive) : m_nAlive(nAlive) { ++m_nAlive; }
        Watched(const Watched &) = delete;
        Watched &operator=(const Watched &) = delete;
        ~Watched() override { --m_nAlive; }
        int &m_nAlive;
    };
    int nAlive = 0;
    update(std::make_unique<Watched>(nAlive));
    EXPECT_EQ(nAlive, 1);
    update(std::make_unique<Watched>(nAlive));
    EXPECT_EQ(nAlive, 1);
    m_renderer.destroy();
    EXPECT_EQ(nAlive, 0);
    update(std::make_unique<Watched>(nAlive));
    update(nullptr);
    EXPECT_EQ(nAlive, 0);
    {
        GeometryRenderer renderer;
        renderer.updateGeometry(std::make_unique<Watched>(nAlive));
    }
    EXPECT_EQ(nAlive, 0);
}

} // namespace
} // namespace xelttest
