// A host as small as can be: one pane, one frame, a look at the picture, release.

#include <XeltRender.hpp>

#include <QApplication>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QImage>
#include <QPointer>
#include <QSurfaceFormat>
#include <QWidget>

#include <cstddef>
#include <cstdio>
#include <vector>

namespace {

constexpr std::size_t nWidth = 64;
constexpr std::size_t nHeight = 48;
constexpr int nPatienceMs = 20000;

// Colourless, white in the left half and black in the right one.
std::vector<std::uint8_t> halves()
{
    std::vector<std::uint8_t> picture(nWidth * nHeight * 3 / 2, 128);
    for (std::size_t y = 0; y < nHeight; ++y) {
        for (std::size_t x = 0; x < nWidth; ++x) {
            picture[y * nWidth + x] = x < nWidth / 2 ? 255 : 0;
        }
    }
    return picture;
}

template <typename Condition> bool pumpUntil(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > nPatienceMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

bool showsHalves(QWidget &window)
{
    const QImage image = window.grab().toImage();
    const int nRow = image.height() / 2;
    return qGray(image.pixel(image.width() / 4, nRow)) > 220 &&
           qGray(image.pixel(image.width() * 3 / 4, nRow)) < 35;
}

int fail(const char *pText)
{
    std::fprintf(stderr, "consumer: %s\n", pText);
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGLES);
    format.setVersion(2, 0);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication app(argc, argv);

    QWidget window;
    window.resize(320, 240);
    auto *pLayout = new QHBoxLayout(&window);
    pLayout->setContentsMargins(0, 0, 0, 0);
    auto pane = xelt::Renderer::create(pLayout);
    if (!pane) {
        return fail("no renderer");
    }
    const QPointer<QWidget> widget = pane.widget();
    window.show();

    const auto picture = halves();
    VideoFrameDesc frame{};
    frame.pFrameData = picture.data();
    frame.iWidth = nWidth;
    frame.iHeight = nHeight;
    frame.nDisplayType = VIDEO_DISPLAY_YV12;
    if (!pane.showFrame(frame)) {
        return fail("the frame was refused");
    }
    if (!pumpUntil([&] { return showsHalves(window); })) {
        return fail("the frame does not show");
    }

    pane.release();
    if (pane.showFrame(frame)) {
        return fail("a released renderer took a frame");
    }
    if (!pumpUntil([&] { return widget.isNull(); })) {
        return fail("the released widget still exists");
    }
    std::puts("consumer: shown and released");
    return 0;
}
