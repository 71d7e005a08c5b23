// Runs single steps in a process and a folder of its own: what it does is named by its arguments, what it
// sees goes to standard output.
#include "Frames.h"
#include "HostWindow.h"
#include "ImageCompare.h"
#include "LoadWatch.h"
#include "System.h"
#include "TestEnvironment.h"
#include "log/CLS_OmbrixApi.h"

#include <QApplication>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <thread>

namespace {

std::atomic<int> g_nCoreLoads{0};

void countLoad(const char *pszPath)
{
    g_nCoreLoads += std::strstr(pszPath, "Ombrix.dll") != nullptr ? 1 : 0;
}

using Arguments = std::vector<std::string>;

CLS_OmbrixApi &api()
{
    return CLS_OmbrixApi::Instance();
}

void say(const char *pszWhat, long nValue)
{
    std::printf("%s=%ld\n", pszWhat, nValue);
    std::fflush(stdout);
}

// Calls one operation, or a whole error record.
int operation(const Arguments &arguments)
{
    say("load", api().LoadCoreLibrary());
    const std::string &sName = arguments.at(0);
    if (sName == "msg") {
        api().inner_sdk_log_msg("the message");
    } else if (sName == "lock") {
        api().inner_sdk_log_buf_lock();
    } else if (sName == "date") {
        api().inner_sdk_log_buf_date();
    } else if (sName == "position") {
        api().inner_sdk_log_buf_msg("the position");
    } else if (sName == "error") {
        api().inner_sdk_err_buf_msg_unlock("the error");
    } else if (sName == "level") {
        say("level", api().inner_sdk_log_get_level(200));
    } else if (sName == "record") {
        XELT_REPORT_ERROR("Source", "Function", "the error");
    } else {
        return 2;
    }
    return 0;
}

// Creates and releases renderers.
int create(const Arguments &arguments)
{
    int argc = 0;
    const QApplication app(argc, nullptr);
    const int nCount = std::stoi(arguments.at(0));
    for (int i = 0; i < nCount; ++i) {
        void *handle = Xelt_Create(nullptr);
        say("created", handle != nullptr);
        say("set", xelttest::setRatioMode(handle, 1));
        say("released", Xelt_Release(handle));
        xelttest::drainEvents();
    }
    say("loads", g_nCoreLoads);
    return 0;
}

// One creation fails by its type, so that the error record is all there is.
int fail(const Arguments &)
{
    int argc = 0;
    const QApplication app(argc, nullptr);
    const int32_t nType = 1;
    say("created", Xelt_CreateEx(&nType, sizeof nType) != nullptr);
    return 0;
}

// The first creation finds no core library; then one is put in place.
int retry(const Arguments &arguments)
{
    int argc = 0;
    const QApplication app(argc, nullptr);
    void *first = Xelt_Create(nullptr);
    say("created", first != nullptr);
    say("loaded", api().Module() != nullptr);
    std::filesystem::copy_file(arguments.at(0), arguments.at(1));
    // Only a creation tries again.
    xelttest::setRatioMode(first, 1);
    say("loaded", api().Module() != nullptr);
    void *second = Xelt_Create(nullptr);
    say("created", second != nullptr);
    say("loaded", api().Module() != nullptr);
    say("loads", g_nCoreLoads);
    return Xelt_Release(first) | Xelt_Release(second);
}

// Every name of the table, resolved or not.
int entries(const Arguments &)
{
    say("load", api().LoadCoreLibrary());
    std::set<platform::Function> setFunctions;
    long nMismatches = 0;
    for (size_t i = 0; i < corelib::kEntryCount; ++i) {
        const auto pExported = api().Module() != nullptr
                                   ? platform::FindFunction(api().Module(), corelib::kEntryNames[i])
                                   : nullptr;
        nMismatches += pExported != api().Entry(i) ? 1 : 0;
        if (api().Entry(i) != nullptr) {
            setFunctions.insert(api().Entry(i));
        }
    }
    say("mismatches", nMismatches);
    say("distinct", static_cast<long>(setFunctions.size()));
    return 0;
}

// First loads from many threads at once.
int race(const Arguments &)
{
    constexpr int k_nThreads = 8;
    std::atomic<int> nReady{0};
    std::atomic<int> nFailures{0};
    std::vector<std::thread> vecThreads;
    for (int i = 0; i < k_nThreads; ++i) {
        vecThreads.emplace_back([&] {
            ++nReady;
            while (nReady < k_nThreads) {
                std::this_thread::yield();
            }
            nFailures += api().LoadCoreLibrary() != 0 || api().Entry(corelib::kSdkLogGetLevel) == nullptr;
        });
    }
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
    say("failures", nFailures);
    return 0;
}

// A pane in a real window shows a frame.
int picture(const Arguments &)
{
    xelttest::applySurfaceFormat(xelttest::glFlavour());
    int argc = 0;
    const QApplication app(argc, nullptr);
    xelttest::HostWindow window(QSize(64, 48));
    say("shown",
        xelttest::show(window.pane(), xelttest::yv12Frame(xelttest::solidPlanes(64, 48, 255, 128, 128))));
    const auto aRgb = xelttest::rgbAt(xelttest::grab(window.pane()), 32, 24);
    say("white", aRgb[0] > 250 && aRgb[1] > 250 && aRgb[2] > 250);
    return 0;
}

// Loads a file and says by which calls, without and with the altered search path.
int loadCalls(const Arguments &arguments)
{
    for (const bool blAltered : {false, true}) {
        if (platform::LoadModule(arguments.at(0).c_str(), blAltered) == nullptr) {
            return 2;
        }
        const xelttest::LoadCall call = xelttest::lastLoadCall();
        std::printf("%s %u\n", call.pszFunction, call.nFlags);
    }
    return 0;
}

// Loads a file beside a module, and says which module that gave.
int beside(const Arguments &arguments)
{
    const std::string &sModule = arguments.at(0);
    const std::string &sFile = arguments.at(1);
    const std::string sHandle = arguments.at(2);
    void *hModule = nullptr;
    if (!sHandle.empty()) {
        hModule = xelttest::openModule(sHandle);
        if (hModule == nullptr) {
            return 2;
        }
    }
    for (const bool blAltered : {false, true}) {
        const platform::ModuleHandle hLoaded =
            CLS_OmbrixApi::LoadLibraryBesideModule(sModule.c_str(), sFile.c_str(), hModule, blAltered);
        if (hLoaded == nullptr) {
            std::printf("null\n");
            continue;
        }
        char szPath[platform::kMaxPath];
        platform::ModuleFileName(hLoaded, szPath, sizeof(szPath));
        std::printf("%s\n", szPath);
        if (const auto pfnText = platform::FindFunction(hLoaded, "sdk_log_msg")) {
            reinterpret_cast<int (*)(const char *)>(pfnText)("hello");
        }
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    xelttest::watchLoads(countLoad);
    const std::map<std::string, int (*)(const Arguments &)> mapSteps = {
        {"operation", operation}, {"create", create},   {"fail", fail},
        {"retry", retry},         {"entries", entries}, {"race", race},
        {"picture", picture},     {"beside", beside},   {"load-calls", loadCalls}};
    const auto it = argc > 1 ? mapSteps.find(argv[1]) : mapSteps.end();
    return it != mapSteps.end() ? it->second(Arguments(argv + 2, argv + argc)) : 2;
}
