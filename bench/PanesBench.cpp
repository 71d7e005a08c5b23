#include "BenchFrame.h"
#include "BenchPane.h"
#include "Contest.h"
#include "Failures.h"
#include "HostThread.h"

#include <benchmark/benchmark.h>

namespace {

const QSize kPaneSize(160, 90); // as on a video wall
constexpr int kWarmUpRounds = 2;
constexpr int kColdVisits = 4;
constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kPaneBytes = std::size_t{800} * 1024; // frame buffer, textures and framebuffer object

// A way to show frames: the library's panes, or the bare ones. Pane number nPanes is the pane alone.
struct Contender
{
    std::function<void(int nPane)> submit; // on the host thread
    std::function<void(int nPane)> paint;  // on the GUI thread
};

// Seconds for submitting to and painting a pane once.
struct RoundTimes
{
    double dAmong = 0;
    double dAlone = 0;     // with its memory in the caches from its visit just before
    double dAloneCold = 0; // after as much foreign memory went through the caches as the other panes use
};

class CacheSweeper
{
public:
    explicit CacheSweeper(int nPanes) : m_bytes(static_cast<std::size_t>(nPanes) * kPaneBytes, 1) {}

    void Sweep() const
    {
        unsigned nSum = 0;
        for (std::size_t i = 0; i < m_bytes.size(); i += kCacheLine)
            nSum += m_bytes[i];
        benchmark::DoNotOptimize(nSum);
    }

private:
    std::vector<std::uint8_t> m_bytes;
};

// Submits to and paints each of the panes once, and between them the pane alone as often; then a few times
// with cold caches.
RoundTimes RunRound(HostThread &host, const Contender &contender, int nPanes, const CacheSweeper &sweeper)
{
    RoundTimes times;
    const auto visitAll = [&](const std::function<void(int)> &action) {
        for (int i = 0; i < nPanes; ++i) {
            times.dAmong += Seconds([&] { action(i); });
            times.dAlone += Seconds([&] { action(nPanes); });
        }
        for (int i = 0; i < kColdVisits; ++i) {
            sweeper.Sweep();
            times.dAloneCold += Seconds([&] { action(nPanes); });
        }
    };
    host.Run([&] { visitAll(contender.submit); });
    visitAll(contender.paint);
    times.dAmong /= nPanes;
    times.dAlone /= nPanes;
    times.dAloneCold /= kColdVisits;
    return times;
}

void Panes(benchmark::State &state, int nPanes)
{
    const BenchFrame frame(kFrame360p, FrameLayout::Yv12);
    PaneWindow window(nPanes + 1, kPaneSize, frame);
    const CacheSweeper sweeper(2 * nPanes - 1); // the bare ones take their turn as well
    HostThread host;
    bool blAccepted = true;
    const Contender ours{[&](int i) { blAccepted = window.Pane(i).showFrame(frame.Desc()) && blAccepted; },
                         [&](int i) { PaintNow(window.PaneWidget(i)); }};
    const Contender bare{[&](int i) { window.Bare(i).Submit(); }, [&](int i) { PaintNow(window.Bare(i)); }};

    for (int i = 0; i <= nPanes; ++i) {
        ours.submit(i);
        bare.submit(i);
    }
    if (!window.Open())
        return FailBench(state, "the panes got no OpenGL context");
    for (int i = 0; i <= nPanes; ++i)
        if (!window.PicturesAgree(i))
            return FailBench(state, "the library and the bare program show different pictures");
    for (int i = 0; i < kWarmUpRounds; ++i) {
        RunRound(host, ours, nPanes, sweeper);
        RunRound(host, bare, nPanes, sweeper);
        DrainEvents();
    }

    std::vector<double> oursToAlone;
    std::vector<double> oursToAloneCold;
    std::vector<double> bareToAlone;
    std::vector<double> oursToBare;
    bool blOursFirst = false;
    while (state.KeepRunningBatch(nPanes)) {
        RoundTimes oursTimes;
        RoundTimes bareTimes;
        const auto runOurs = [&] { oursTimes = RunRound(host, ours, nPanes, sweeper); };
        const auto runBare = [&] { bareTimes = RunRound(host, bare, nPanes, sweeper); };
        blOursFirst = !blOursFirst;
        if (blOursFirst)
            runOurs();
        runBare();
        if (!blOursFirst)
            runOurs();
        oursToAlone.push_back(oursTimes.dAmong / oursTimes.dAlone);
        oursToAloneCold.push_back(oursTimes.dAmong / oursTimes.dAloneCold);
        bareToAlone.push_back(bareTimes.dAmong / bareTimes.dAlone);
        oursToBare.push_back(oursTimes.dAmong / bareTimes.dAmong);
        state.SetIterationTime(oursTimes.dAmong * nPanes);
        DrainEvents();
    }
    if (!blAccepted)
        return FailBench(state, "the library refused a frame");
    state.counters["of_alone"] = Median(std::move(oursToAlone));
    state.counters["of_alone_cold"] = Median(std::move(oursToAloneCold));
    state.counters["bare_of_alone"] = Median(std::move(bareToAlone));
    state.counters["of_bare"] = Median(std::move(oursToBare));
}

} // namespace

void RegisterPanesBenchmarks()
{
    for (const int nPanes : {1, 4, 16, 64})
        benchmark::RegisterBenchmark(("Panes/YV12/" + std::to_string(nPanes)).c_str(),
                                     [=](benchmark::State &state) { Panes(state, nPanes); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
}
