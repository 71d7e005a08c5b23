// Vertex data, byte for byte, and the layout.
#include "d3d11/TexturedGeometry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

std::vector<float> floats(const Geometry &geometry)
{
    std::vector<float> vecFloats(static_cast<size_t>(geometry.vertexData.size()) / sizeof(float));
    if (!vecFloats.empty()) {
        std::memcpy(vecFloats.data(), geometry.vertexData.constData(), vecFloats.size() * sizeof(float));
    }
    return vecFloats;
}

class IndexedGeometry : public TexturedGeometry
{
public:
    explicit IndexedGeometry(int32_t nType, int32_t nCount)
    {
        indexType = nType;
        indexCount = nCount;
    }
};

TEST(GeometryTest, StartsAsAnEmptyQuad)
{
    const TexturedGeometry geometry;
    EXPECT_EQ(geometry.primitive, 5);
    EXPECT_EQ(geometry.indexType, 5123);
    EXPECT_EQ(geometry.vertexCount, 4);
    EXPECT_EQ(geometry.indexCount, 0);
    EXPECT_EQ(geometry.indexDataSize(), 0);
    EXPECT_TRUE(geometry.vertexData.isEmpty());
    EXPECT_TRUE(geometry.indexData.isEmpty());
    EXPECT_EQ(geometry.stride(), 16);
    ASSERT_EQ(geometry.attributes().size(), 2);
}

TEST(GeometryTest, HasAPositionAndATextureCoordinate)
{
    TexturedGeometry geometry;
    geometry.create();
    ASSERT_EQ(geometry.attributes().size(), 2);
    for (int i = 0; i < 2; ++i) {
        const VertexAttribute &attribute = geometry.attributes().at(i);
        EXPECT_FALSE(attribute.normalize);
        EXPECT_EQ(attribute.type, 5126);
        EXPECT_EQ(attribute.tupleSize, 2);
        EXPECT_EQ(attribute.offset, 8 * i);
        EXPECT_TRUE(attribute.name.isEmpty());
    }
}

TEST(GeometryTest, DefaultRectangleAsAStrip)
{
    TexturedGeometry geometry;
    geometry.setTextureCount(1);
    geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
    geometry.create();
    EXPECT_EQ(geometry.vertexData.size(), 64);
    EXPECT_EQ(geometry.vertexCount, 4);
    EXPECT_EQ(geometry.indexCount, 0);
    EXPECT_EQ(floats(geometry), (std::vector<float>{-1, 1, 0, 0, -1, -1, 0, 1, 1, 1, 1, 0, 1, -1, 1, 1}));
}

TEST(GeometryTest, BytesAreLittleEndianFloats)
{
    TexturedGeometry geometry;
    geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
    geometry.create();
    const QByteArray abOne = QByteArray::fromHex("0000803f");
    const QByteArray abMinusOne = QByteArray::fromHex("000080bf");
    const QByteArray abZero(4, '\0');
    EXPECT_EQ(geometry.vertexData, abMinusOne + abOne + abZero + abZero + abMinusOne + abMinusOne + abZero +
                                       abOne + abOne + abOne + abOne + abZero + abOne + abMinusOne + abOne +
                                       abOne);
}

TEST(GeometryTest, WithoutATextureRectangleTheCoordinatesAreZero)
{
    TexturedGeometry geometry;
    geometry.create();
    EXPECT_EQ(floats(geometry), (std::vector<float>{-1, 1, 0, 0, -1, -1, 0, 0, 1, 1, 0, 0, 1, -1, 0, 0}));
}

TEST(GeometryTest, AFanTurnsTheLastTwoCornersRound)
{
    TexturedGeometry geometry;
    geometry.primitive = GL_TRIANGLE_FAN;
    geometry.setRect(QRectF(-0.5, 0.75, 1.25, -1.5));
    geometry.setTextureRect(QRectF(0.25, 0.125, 0.5, 0.25), 0);
    geometry.create();
    EXPECT_EQ(floats(geometry), (std::vector<float>{-0.5f, 0.75f, 0.25f, 0.125f,  //
                                                    -0.5f, -0.75f, 0.25f, 0.375f, //
                                                    0.75f, -0.75f, 0.75f, 0.375f, //
                                                    0.75f, 0.75f, 0.75f, 0.125f}));
}

TEST(GeometryTest, OtherPrimitivesGetTwoCorners)
{
    for (const int nPrimitive : {GL_TRIANGLES, GL_LINES, GL_POINTS, 99}) {
        TexturedGeometry geometry;
        geometry.primitive = nPrimitive;
        geometry.setTextureRect(QRectF(0.5, 0.5, 0.5, 0.5), 0);
        geometry.create();
        EXPECT_EQ(floats(geometry),
                  (std::vector<float>{-1, 1, 0.5f, 0.5f, -1, -1, 0.5f, 1, 0, 0, 0, 0, 0, 0, 0, 0}))
            << nPrimitive;
    }
}

TEST(GeometryTest, EachTextureAddsAPairAndAnAttribute)
{
    TexturedGeometry geometry;
    geometry.setTextureCount(2);
    geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
    geometry.setTextureRect(QRectF(0.5, 0.25, 0.25, 0.5), 1);
    EXPECT_EQ(geometry.stride(), 24);
    EXPECT_EQ(geometry.attributes().size(), 2) << "the layout follows with create()";
    geometry.create();
    ASSERT_EQ(geometry.attributes().size(), 3);
    EXPECT_EQ(geometry.attributes().at(2).offset, 16);
    EXPECT_EQ(geometry.attributes().at(2).tupleSize, 2);
    EXPECT_EQ(geometry.attributes().at(2).type, GL_FLOAT);
    EXPECT_FALSE(geometry.attributes().at(2).normalize);
    EXPECT_EQ(floats(geometry), (std::vector<float>{-1, 1, 0, 0, 0.5f,  0.25f, -1, -1, 0, 1, 0.5f,  0.75f,
                                                    1,  1, 1, 0, 0.75f, 0.25f, 1,  -1, 1, 1, 0.75f, 0.75f}));

    geometry.setTextureCount(1);
    geometry.create();
    EXPECT_EQ(geometry.stride(), 16);
    EXPECT_EQ(geometry.attributes().size(), 2);
    EXPECT_EQ(geometry.vertexData.size(), 64);
}

TEST(GeometryTest, ManyTexturesKeepTheirOffsets)
{
    TexturedGeometry geometry;
    geometry.setTextureCount(4);
    geometry.create();
    ASSERT_EQ(geometry.attributes().size(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(geometry.attributes().at(i).offset, 8 * i);
    }
    EXPECT_EQ(geometry.vertexData.size(), 4 * 40);
}

TEST(GeometryTest, NoTextureLeavesThePositions)
{
    TexturedGeometry geometry;
    geometry.setTextureCount(0);
    geometry.create();
    EXPECT_EQ(geometry.stride(), 8);
    EXPECT_EQ(geometry.attributes().size(), 1);
    EXPECT_EQ(floats(geometry), (std::vector<float>{-1, 1, -1, -1, 1, 1, 1, -1}));
}

TEST(GeometryTest, CreateClearsIndicesAndWhatWasThere)
{
    TexturedGeometry geometry;
    geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
    geometry.create();
    geometry.indexCount = 6;
    geometry.indexData = QByteArray(12, 'x');
    geometry.primitive = GL_TRIANGLES;
    geometry.create();
    EXPECT_EQ(geometry.indexCount, 0);
    EXPECT_TRUE(geometry.indexData.isEmpty());
    EXPECT_EQ(geometry.vertexData.mid(32), QByteArray(32, '\0')) << "old corners are gone";
}

TEST(GeometryTest, IndexDataSizeFollowsTheType)
{
    EXPECT_EQ(IndexedGeometry(GL_UNSIGNED_SHORT, 6).indexDataSize(), 12);
    EXPECT_EQ(IndexedGeometry(GL_UNSIGNED_INT, 6).indexDataSize(), 24);
    EXPECT_EQ(IndexedGeometry(GL_UNSIGNED_BYTE, 6).indexDataSize(), 6);
    EXPECT_EQ(IndexedGeometry(1, 6).indexDataSize(), 6);
    EXPECT_EQ(IndexedGeometry(GL_UNSIGNED_INT, 0).indexDataSize(), 0);
}

TEST(GeometryTest, DoublesBecomeFloats)
{
    TexturedGeometry geometry;
    geometry.setRect(QRectF(0.1, 0.2, 0.3, 0.4));
    geometry.create();
    EXPECT_EQ(floats(geometry)[0], static_cast<float>(0.1));
    EXPECT_EQ(floats(geometry)[5], static_cast<float>(0.2 + 0.4));
    EXPECT_EQ(floats(geometry)[8], static_cast<float>(0.1 + 0.3));
}

// Rectangles, vertices and textures that do not fit together never reach beyond the vertex data.
TEST(GeometryTest, TextureRectanglesBeyondTheCountHaveNoPlace)
{
    TexturedGeometry geometry;
    geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
    geometry.create();
    const QByteArray abBefore = geometry.vertexData;
    geometry.setTextureRect(QRectF(9, 9, 9, 9), 3);
    geometry.create();
    EXPECT_EQ(geometry.stride(), 16);
    EXPECT_EQ(geometry.vertexData, abBefore);
    EXPECT_EQ(geometry.attributes().size(), 2);

    geometry.setTextureCount(4);
    geometry.create();
    EXPECT_EQ(floats(geometry)[8], 9.0f) << "it waits for the count to grow";
}

TEST(GeometryTest, FewerVerticesGetFewerCorners)
{
    for (const int nVertices : {0, 1, 3}) {
        TexturedGeometry geometry;
        geometry.vertexCount = nVertices;
        geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
        geometry.create();
        ASSERT_EQ(geometry.vertexData.size(), nVertices * 16);
        const std::vector<float> vecAll{-1, 1, 0, 0, -1, -1, 0, 1, 1, 1, 1, 0};
        EXPECT_EQ(floats(geometry), std::vector<float>(vecAll.begin(), vecAll.begin() + 4 * nVertices));
    }
}

TEST(GeometryTest, MoreVerticesStayZero)
{
    TexturedGeometry geometry;
    geometry.vertexCount = 6;
    geometry.create();
    ASSERT_EQ(geometry.vertexData.size(), 96);
    EXPECT_EQ(geometry.vertexData.mid(64), QByteArray(32, '\0'));
}

TEST(GeometryTest, NegativeNumbersAreIgnored)
{
    TexturedGeometry geometry;
    geometry.setTextureRect(QRectF(0, 0, 1, 1), 0);
    geometry.setTextureCount(-1);
    geometry.setTextureRect(QRectF(9, 9, 9, 9), -1);
    geometry.create();
    EXPECT_EQ(geometry.stride(), 16);
    EXPECT_EQ(floats(geometry)[6], 0.0f);
    EXPECT_EQ(floats(geometry)[7], 1.0f);
}

TEST(GeometryTest, LayoutsAreEqualWhereGlReadsThemAlike)
{
    const VertexAttribute attribute{false, GL_FLOAT, 2, 8, "a"};
    VertexAttribute other = attribute;
    EXPECT_TRUE(attribute == other);
    other.name = "b";
    EXPECT_TRUE(attribute == other) << "names do not count";
    other = attribute;
    other.normalize = true;
    EXPECT_FALSE(attribute == other);
    other = attribute;
    other.type = GL_UNSIGNED_BYTE;
    EXPECT_FALSE(attribute == other);
    other = attribute;
    other.tupleSize = 3;
    EXPECT_FALSE(attribute == other);
    other = attribute;
    other.offset = 0;
    EXPECT_FALSE(attribute == other);
    EXPECT_TRUE(QVector<VertexAttribute>() == QVector<VertexAttribute>());
    EXPECT_FALSE(QVector<VertexAttribute>{attribute} == QVector<VertexAttribute>());
}

TEST(GeometryTest, CopiesOfTheLayoutStayAsTheyWere)
{
    TexturedGeometry geometry;
    geometry.create();
    const QVector<VertexAttribute> vecBefore = geometry.attributes();
    geometry.setTextureCount(3);
    geometry.create();
    EXPECT_EQ(vecBefore.size(), 2);
    EXPECT_EQ(geometry.attributes().size(), 4);
}

} // namespace
