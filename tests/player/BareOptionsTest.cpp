// Without FFmpeg's libraries and without Direct3D 11 the pattern is what there is to play.
#include "Options.h"

#include <gtest/gtest.h>

namespace {

std::optional<EarlyExit> parse(const char *pArguments, Options &options)
{
    return parseOptions(QStringList{QStringLiteral("xeltplay")} +
                            QString::fromLatin1(pArguments).split(QLatin1Char(' '), Qt::SkipEmptyParts),
                        options);
}

void expectUsageError(const char *pArguments, const char *pPart)
{
    Options options;
    const auto early = parse(pArguments, options);
    ASSERT_TRUE(early.has_value()) << pArguments;
    EXPECT_EQ(early->nStatus, kStatusUsage);
    EXPECT_TRUE(early->strText.contains(QLatin1String(pPart))) << qPrintable(early->strText);
    EXPECT_FALSE(early->strText.contains(QLatin1Char('\n')));
}

} // namespace

TEST(BareOptions, patternByItself)
{
    Options options;
    EXPECT_FALSE(parse("", options).has_value());
    ASSERT_TRUE(options.pattern.has_value());
    EXPECT_EQ(options.pattern->size, QSize(1280, 720));
    EXPECT_EQ(options.pattern->rate, 25.0);
}

TEST(BareOptions, patternAsAskedFor)
{
    for (const char *pFirst : {"", "--pattern "}) {
        Options options;
        const QByteArray arguments =
            QByteArray(pFirst) + "--pattern-size 67x51 --pattern-rate 29.97 --panes 3";
        EXPECT_FALSE(parse(arguments.constData(), options).has_value());
        ASSERT_TRUE(options.pattern.has_value());
        EXPECT_EQ(options.pattern->size, QSize(67, 51));
        EXPECT_EQ(options.pattern->rate, 29.97);
        EXPECT_EQ(options.nPanes, 3);
    }
}

TEST(BareOptions, noFiles)
{
    expectUsageError("film.mp4", "plays no files");
    expectUsageError("--pattern film.mp4", "plays no files");
}

TEST(BareOptions, noTextures)
{
    expectUsageError("--format d3d11", "this build plays no Direct3D 11 textures");
}
