// The embedded files as a program finds them.
#include "ShaderFiles.h"

#include <gmock/gmock.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QResource>

#include <utility>
#include <vector>

namespace {

using namespace xelttest;

QByteArray contents(const QString &sPath)
{
    QFile file(sPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << sPath.toStdString();
    return file.readAll();
}

// Type and name of each uniform, in the order of the text.
using Uniforms = std::vector<std::pair<QString, QString>>;
Uniforms uniforms(const QString &sPath)
{
    static const QRegularExpression expression(QStringLiteral("^uniform (\\w+) (\\w+);"),
                                               QRegularExpression::MultilineOption);
    Uniforms vecUniforms;
    auto matches = expression.globalMatch(QString::fromLatin1(contents(sPath)));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        vecUniforms.emplace_back(match.captured(1), match.captured(2));
    }
    return vecUniforms;
}

TEST(FilesTest, FoldersHoldTheSevenFilesAndNoMore)
{
    EXPECT_EQ(QDir(":/opengl").entryList(), QStringList({"shaders"}));
    EXPECT_EQ(QDir(":/opengl/shaders").entryList(QDir::NoFilter, QDir::Name),
              QStringList({"OSD.frag", "OSD.vert", "Video.vert", "VideoRGB.frag", "VideoYCbCr.frag"}));
    EXPECT_EQ(QDir(":/shaderscommon").entryList(QDir::NoFilter, QDir::Name),
              QStringList({"colorspace.glsl", "hsl.glsl"}));
    EXPECT_FALSE(QFileInfo::exists(":/shaders")) << "the folder's name is one word";
}

TEST(FilesTest, FilesHaveTheirSizesUncompressed)
{
    for (const ShaderFile &file : k_aShaderFiles) {
        SCOPED_TRACE(file.pszPath);
        const QResource resource(file.pszPath);
        ASSERT_TRUE(resource.isValid());
        EXPECT_EQ(resource.compressionAlgorithm(), QResource::NoCompression);
        EXPECT_EQ(resource.size(), file.nSize);
        EXPECT_EQ(contents(file.pszPath).size(), file.nSize);
        EXPECT_TRUE(resource.lastModified().isValid());
    }
}

TEST(FilesTest, TextsAreAsciiWithLineFeeds)
{
    for (const ShaderFile &file : k_aShaderFiles) {
        SCOPED_TRACE(file.pszPath);
        const QByteArray abText = contents(file.pszPath);
        EXPECT_TRUE(abText.endsWith("}\n"));
        for (const char cByte : abText) {
            const bool blPlain = cByte == '\n' || (cByte >= ' ' && cByte <= '~');
            ASSERT_TRUE(blPlain) << static_cast<int>(cByte);
        }
    }
}

TEST(FilesTest, UniformsStandInTheirOrder)
{
    EXPECT_EQ(uniforms(":/opengl/shaders/Video.vert"), (Uniforms{{"mat4", "uMatrix"}}));
    EXPECT_EQ(uniforms(":/opengl/shaders/OSD.vert"), Uniforms{});
    EXPECT_EQ(uniforms(":/opengl/shaders/OSD.frag"), (Uniforms{{"sampler2D", "uTex"}}));
    EXPECT_EQ(uniforms(":/opengl/shaders/VideoRGB.frag"), (Uniforms{{"vec3", "uVideoAdj"},
                                                                    {"vec2", "uTextureSize"},
                                                                    {"sampler2D", "uRGB"},
                                                                    {"int", "uTrc"},
                                                                    {"mat3", "uColorPrimariesMatrix"},
                                                                    {"float", "uMaxLuminance"},
                                                                    {"int", "uNegative"}}));
    EXPECT_EQ(uniforms(":/opengl/shaders/VideoYCbCr.frag"), (Uniforms{{"mat3", "uYUVtRGB"},
                                                                      {"vec2", "uRangeMultiplier"},
                                                                      {"float", "uBL"},
                                                                      {"vec4", "uVideoEq"},
                                                                      {"float", "uSharpness"},
                                                                      {"vec2", "uTextureSize"},
                                                                      {"float", "uBitsMultiplier"},
                                                                      {"int", "uTrc"},
                                                                      {"mat3", "uColorPrimariesMatrix"},
                                                                      {"float", "uMaxLuminance"},
                                                                      {"int", "uNegative"},
                                                                      {"sampler", "uY"},
                                                                      {"sampler", "uCbCr"},
                                                                      {"sampler", "uCb"},
                                                                      {"sampler", "uCr"},
                                                                      {"int", "u_iDrawFlag"},
                                                                      {"float", "u_fDrawAlpha"},
                                                                      {"vec3", "u_vDrawColor"}}));
}

TEST(FilesTest, RgbShaderStartsWithItsSamplingMacro)
{
    EXPECT_TRUE(contents(":/opengl/shaders/VideoRGB.frag").startsWith("#define texture texture2D\n"));
}

} // namespace
