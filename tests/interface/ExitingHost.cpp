// A host that ends without having released its pane. The arguments are the library's path and what the host
// keeps the pane in.
#include "XeltRender.h"

#include <QApplication>
#include <QLibrary>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

void *g_handle = nullptr; // the host has not lost it

// The two functions, from a library that is loaded here and stays.
struct Library
{
    explicit Library(const char *pPath)
    {
        QLibrary library(QString::fromLocal8Bit(pPath));
        if (!library.load()) {
            std::fprintf(stderr, "%s\n", qPrintable(library.errorString()));
            std::_Exit(2);
        }
        create = reinterpret_cast<decltype(create)>(library.resolve("Xelt_Create"));
        show = reinterpret_cast<decltype(show)>(library.resolve("Xelt_ShowYuvFrame"));
    }
    decltype(&Xelt_Create) create;
    decltype(&Xelt_ShowYuvFrame) show;
};

void makePane(const Library &library, QWidget *pWindow)
{
    g_handle = library.create(pWindow != nullptr ? new QVBoxLayout(pWindow) : nullptr);
    static const std::vector<uint8_t> s_aPixels(64 * 48 * 3 / 2, 90);
    VideoFrameDesc frame{};
    frame.pFrameData = s_aPixels.data();
    frame.iWidth = 64;
    frame.iHeight = 48;
    if (g_handle == nullptr || library.show(g_handle, &frame, sizeof frame) != 0) {
        std::fprintf(stderr, "no pane\n");
        std::_Exit(2);
    }
}

// Long enough for the frame to be painted.
void play(QWidget &window)
{
    window.resize(160, 120);
    window.show();
    QTimer::singleShot(300, QCoreApplication::instance(), &QCoreApplication::quit);
    QApplication::exec();
}

// Never shown: once it was, Qt itself would not survive the end of a GL widget without an application.
QWidget &staticWindow()
{
    static QWidget s_window;
    return s_window;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3) {
        return 2;
    }
    const std::string sHow = argv[2];
    if (sHow == "static-application") {
        static QApplication s_app(argc, argv);
        makePane(Library(argv[1]), &staticWindow());
        return 0;
    }
    const QApplication app(argc, argv);
    if (sHow == "older-static-window") {
        staticWindow(); // ends after everything that the library has made
    }
    const Library library(argv[1]);
    if (sHow == "no-window") {
        makePane(library, nullptr);
    } else if (sHow == "kept-window") {
        static QWidget *s_pWindow = new QWidget; // never destroyed
        makePane(library, s_pWindow);
        play(*s_pWindow);
    } else {
        makePane(library, &staticWindow());
    }
    return 0;
}
