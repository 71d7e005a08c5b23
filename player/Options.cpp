#include "Options.h"

#include "FileSource.h"
#include "TextureFrames.h"

#include <QCommandLineParser>

#include <cmath>
#include <stdexcept>

namespace {

// Carries the text of the one line that a wrong command line gets.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString &strText) : std::runtime_error(strText.toStdString()) {}
};

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral("Plays video files through XeltRender. With no file, "
                                                    "plays a test clip that it makes, or, in a build\n"
                                                    "without FFmpeg's libraries, a moving test pattern.\n"
                                                    "In the window, H lists the keys."));
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Video files; panes take turns."),
                                 QStringLiteral("[files...]"));
    parser.addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this text.")},
        {QStringLiteral("panes"), QStringLiteral("Number of panes; one for each file by itself."),
         QStringLiteral("N")},
        {QStringLiteral("pattern"), QStringLiteral("Plays a moving test pattern instead of files.")},
        {QStringLiteral("pattern-size"), QStringLiteral("Size of its pictures."), QStringLiteral("WxH"),
         QStringLiteral("1280x720")},
        {QStringLiteral("pattern-rate"), QStringLiteral("Its pictures a second."), QStringLiteral("N"),
         QStringLiteral("25")},
        {QStringLiteral("format"), QStringLiteral("yv12, nv12, nv12-padded or d3d11."),
         QStringLiteral("NAME"), QStringLiteral("yv12")},
        {QStringLiteral("renderer"), QStringLiteral("yuv or subimage; the latter neither turns nor places."),
         QStringLiteral("NAME"), QStringLiteral("yuv")},
        {QStringLiteral("label-parent"), QStringLiteral("Puts texts on the window instead of the panes.")},
        {QStringLiteral("loop"), QStringLiteral("Starts again at the end.")},
        {QStringLiteral("fast"), QStringLiteral("As fast as it goes, not at the stream's frame rate.")},
        {QStringLiteral("seconds"), QStringLiteral("Ends after S seconds."), QStringLiteral("S")},
        {QStringLiteral("frames"), QStringLiteral("Ends each pane after N frames."), QStringLiteral("N")},
        {QStringLiteral("overlay"), QStringLiteral("Draws moving shapes and texts over the picture.")},
        {QStringLiteral("rotate"), QStringLiteral("Turns by 0, 90, 180 or 270 degrees, clockwise."),
         QStringLiteral("DEGREES"), QStringLiteral("0")},
        {QStringLiteral("ccw"), QStringLiteral("Turns counter-clockwise.")},
        {QStringLiteral("mirror"), QStringLiteral("none, h (left-right) or v (upside down)."),
         QStringLiteral("WAY"), QStringLiteral("none")},
        {QStringLiteral("zoom"), QStringLiteral("Part of the pane to magnify, each edge 0 to 1."),
         QStringLiteral("l,t,r,b")},
        {QStringLiteral("rect"), QStringLiteral("Where in the pane the picture goes, in pixels."),
         QStringLiteral("l,t,r,b")},
        {QStringLiteral("fill"), QStringLiteral("Fills the pane; the picture's proportions give way.")},
        {QStringLiteral("desktop-gl"), QStringLiteral("Desktop OpenGL instead of OpenGL ES.")},
        {QStringLiteral("screenshot"), QStringLiteral("Writes a picture of the window at the end."),
         QStringLiteral("FILE.png")},
        {QStringLiteral("size"), QStringLiteral("Size of the window."), QStringLiteral("WxH"),
         QStringLiteral("1280x720")},
        {QStringLiteral("log"),
         QStringLiteral("Level of the library's log: 0 nothing, 100 errors, 200 everything."),
         QStringLiteral("LEVEL")},
    });
}

[[noreturn]] void refuse(const QString &strOption, const QString &strWanted, const QString &strGot)
{
    throw UsageError(QStringLiteral("--%1 takes %2, not '%3'").arg(strOption, strWanted, strGot));
}

qint64 wholeNumber(const QCommandLineParser &parser, const QString &strOption, qint64 nLeast, qint64 nMost)
{
    bool blOk = false;
    const QString strValue = parser.value(strOption);
    const qint64 nValue = strValue.toLongLong(&blOk);
    if (!blOk || nValue < nLeast || nValue > nMost) {
        refuse(strOption, QStringLiteral("a whole number from %1 to %2").arg(nLeast).arg(nMost), strValue);
    }
    return nValue;
}

double positiveNumber(const QCommandLineParser &parser, const QString &strOption, double most,
                      const QString &strWanted)
{
    bool blOk = false;
    const QString strValue = parser.value(strOption);
    const double number = strValue.toDouble(&blOk);
    if (!blOk || !(number > 0.0) || number > most) {
        refuse(strOption, strWanted, strValue);
    }
    return number;
}

// Position in the list of what the option takes.
int choice(const QCommandLineParser &parser, const QString &strOption, const QStringList &astrChoices)
{
    const QString strValue = parser.value(strOption);
    const int nIndex = astrChoices.indexOf(strValue);
    if (nIndex < 0) {
        refuse(strOption, astrChoices.join(QStringLiteral(", ")), strValue);
    }
    return nIndex;
}

template <typename Number, typename Convert>
void fourNumbers(const QCommandLineParser &parser, const QString &strOption, const QString &strWanted,
                 Convert convert, Number (&anResult)[4])
{
    const QString strValue = parser.value(strOption);
    const QStringList astrParts = strValue.split(QLatin1Char(','));
    bool blOk = astrParts.size() == 4;
    for (int i = 0; blOk && i < 4; ++i) {
        anResult[i] = convert(astrParts[i], &blOk);
    }
    if (!blOk) {
        refuse(strOption, strWanted, strValue);
    }
}

XeltEZoomArea zoomArea(const QCommandLineParser &parser)
{
    const auto convert = [](const QString &strPart, bool *pblOk) {
        const double edge = strPart.toDouble(pblOk);
        *pblOk = *pblOk && std::isfinite(edge);
        return edge;
    };
    double edges[4];
    fourNumbers(parser, QStringLiteral("zoom"), QStringLiteral("four numbers l,t,r,b"), convert, edges);
    return {edges[0], edges[1], edges[2], edges[3]};
}

XeltDrawDstRect destination(const QCommandLineParser &parser)
{
    const auto convert = [](const QString &strPart, bool *pblOk) { return strPart.toInt(pblOk); };
    int edges[4];
    const QString strWanted = QStringLiteral("four whole numbers l,t,r,b at least 2 pixels apart");
    fourNumbers(parser, QStringLiteral("rect"), strWanted, convert, edges);
    const qint64 nWidth = qint64{edges[2]} - edges[0] + 1;
    const qint64 nHeight = qint64{edges[3]} - edges[1] + 1;
    if (nWidth < 2 || nHeight < 2) {
        refuse(QStringLiteral("rect"), strWanted, parser.value(QStringLiteral("rect")));
    }
    return {edges[0], edges[1], edges[2], edges[3]};
}

QSize sizeInPixels(const QCommandLineParser &parser, const QString &strOption, int nLeast)
{
    const QString strValue = parser.value(strOption);
    const QStringList astrParts = strValue.split(QLatin1Char('x'));
    bool blWidth = false;
    bool blHeight = false;
    const QSize size(astrParts.value(0).toInt(&blWidth), astrParts.value(1).toInt(&blHeight));
    constexpr int kMost = 16384;
    const bool blInRange =
        size.width() >= nLeast && size.height() >= nLeast && size.width() <= kMost && size.height() <= kMost;
    if (astrParts.size() != 2 || !blWidth || !blHeight || !blInRange) {
        refuse(strOption, QStringLiteral("WxH, each from %1 to %2").arg(nLeast).arg(kMost), strValue);
    }
    return size;
}

FrameLayout textureLayout(const QCommandLineParser &parser)
{
    if (!TextureFrames::isAvailable()) {
        throw UsageError(
            QStringLiteral("--format d3d11: this build plays no Direct3D 11 textures; take yv12 or nv12"));
    }
    if (parser.isSet(QStringLiteral("desktop-gl"))) {
        throw UsageError(QStringLiteral("--format d3d11 needs OpenGL ES, without --desktop-gl"));
    }
    return FrameLayout::Texture;
}

FrameLayout frameLayout(const QCommandLineParser &parser)
{
    const QStringList astrNames{QStringLiteral("yv12"), QStringLiteral("nv12"), QStringLiteral("nv12-padded"),
                                QStringLiteral("d3d11")};
    switch (choice(parser, QStringLiteral("format"), astrNames)) {
    case 0:
        return FrameLayout::Yv12;
    case 1:
        return FrameLayout::Nv12;
    case 2:
        return FrameLayout::Nv12Padded;
    default:
        return textureLayout(parser);
    }
}

void readView(const QCommandLineParser &parser, ViewSettings &view)
{
    view.nAngle = 90 * choice(parser, QStringLiteral("rotate"),
                              {QStringLiteral("0"), QStringLiteral("90"), QStringLiteral("180"),
                               QStringLiteral("270")});
    view.blCounterClockwise = parser.isSet(QStringLiteral("ccw"));
    view.nMirror = choice(parser, QStringLiteral("mirror"),
                          {QStringLiteral("none"), QStringLiteral("h"), QStringLiteral("v")});
    view.blFill = parser.isSet(QStringLiteral("fill"));
    if (parser.isSet(QStringLiteral("zoom"))) {
        view.rcZoom = zoomArea(parser);
    }
    if (parser.isSet(QStringLiteral("rect"))) {
        view.rcDestination = destination(parser);
    }
}

// The pattern is played when it is asked for, and where there is nothing else to play.
void readPattern(const QCommandLineParser &parser, Options &options)
{
    if (!options.astrFiles.isEmpty()) {
        if (!FileSource::isAvailable()) {
            throw UsageError(QStringLiteral(
                "this build is without FFmpeg's libraries: it plays no files, only its test pattern"));
        }
        if (parser.isSet(QStringLiteral("pattern"))) {
            throw UsageError(QStringLiteral("--pattern plays no files"));
        }
    } else if (parser.isSet(QStringLiteral("pattern")) || !FileSource::isAvailable()) {
        options.pattern = PatternSettings{
            sizeInPixels(parser, QStringLiteral("pattern-size"), 2),
            positiveNumber(parser, QStringLiteral("pattern-rate"), 1000.0,
                           QStringLiteral("a number of pictures a second above 0, at most 1000"))};
    }
    for (const auto &strOption : {QStringLiteral("pattern-size"), QStringLiteral("pattern-rate")}) {
        if (parser.isSet(strOption) && !options.pattern) {
            throw UsageError(QStringLiteral("--%1 needs --pattern").arg(strOption));
        }
    }
}

void readPanes(const QCommandLineParser &parser, Options &options)
{
    options.astrFiles = parser.positionalArguments();
    options.nPanes = std::max(1, static_cast<int>(options.astrFiles.size()));
    if (parser.isSet(QStringLiteral("panes"))) {
        options.nPanes = static_cast<int>(wholeNumber(parser, QStringLiteral("panes"), 1, 256));
    }
    if (options.astrFiles.size() > options.nPanes) {
        throw UsageError(
            QStringLiteral("%1 files and only %2 panes").arg(options.astrFiles.size()).arg(options.nPanes));
    }
}

void readOptions(const QCommandLineParser &parser, Options &options)
{
    readPanes(parser, options);
    readPattern(parser, options);
    options.layout = frameLayout(parser);
    options.blSubImage =
        choice(parser, QStringLiteral("renderer"), {QStringLiteral("yuv"), QStringLiteral("subimage")}) == 1;
    options.blLabelParent = parser.isSet(QStringLiteral("label-parent"));
    options.blLoop = parser.isSet(QStringLiteral("loop"));
    options.blFast = parser.isSet(QStringLiteral("fast"));
    options.blOverlay = parser.isSet(QStringLiteral("overlay"));
    options.blDesktopGl = parser.isSet(QStringLiteral("desktop-gl"));
    if (parser.isSet(QStringLiteral("seconds"))) {
        options.seconds = positiveNumber(parser, QStringLiteral("seconds"), 1e6,
                                         QStringLiteral("a number of seconds above 0"));
    }
    if (parser.isSet(QStringLiteral("frames"))) {
        options.frames = wholeNumber(parser, QStringLiteral("frames"), 1, 1000000000);
    }
    if (parser.isSet(QStringLiteral("log"))) {
        options.logLevel = static_cast<int>(wholeNumber(parser, QStringLiteral("log"), 0, 1000));
    }
    readView(parser, options.view);
    options.strScreenshot = parser.value(QStringLiteral("screenshot"));
    options.size = sizeInPixels(parser, QStringLiteral("size"), 64);
}

} // namespace

std::optional<EarlyExit> parseOptions(const QStringList &astrArguments, Options &options)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(astrArguments)) {
        return EarlyExit{kStatusUsage, parser.errorText()};
    }
    if (parser.isSet(QStringLiteral("help"))) {
        return EarlyExit{0, parser.helpText()};
    }
    try {
        readOptions(parser, options);
    } catch (const UsageError &error) {
        return EarlyExit{kStatusUsage, QString::fromUtf8(error.what())};
    }
    return std::nullopt;
}
