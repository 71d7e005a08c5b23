#include "BenchFrame.h"
#include "BenchPane.h"
#include "Contest.h"
#include "Failures.h"

#include <benchmark/benchmark.h>

namespace {

// Small, so that the panes' own work weighs more against the shading of pixels.
const QSize kPaneSize(640, 360);
constexpr int kWarmUpRounds = 3;

void Paint(benchmark::State &state, FrameSize size, FrameLayout layout)
{
    const BenchFrame frame(size, layout);
    PaneWindow window(1, kPaneSize, frame);
    window.Bare(0).Submit();
    if (!window.Pane(0).showFrame(frame.Desc()))
        return FailBench(state, "the library refused a frame");
    if (!window.Open())
        return FailBench(state, "the panes got no OpenGL context");
    if (!window.PicturesAgree(0))
        return FailBench(state, "the library and the bare program show different pictures");

    std::vector<std::function<void()>> contenders;
    contenders.emplace_back([&] { PaintNow(window.PaneWidget(0)); });
    contenders.emplace_back([&] { PaintNow(window.Bare(0)); });
    Contest contest(std::move(contenders));
    contest.WarmUp(kWarmUpRounds);

    while (state.KeepRunning())
        state.SetIterationTime(contest.RunRound());
    state.counters["of_bare"] = contest.Ratio(0, 1);
}

} // namespace

void RegisterPaintBenchmarks()
{
    for (const FrameLayout layout : {FrameLayout::Yv12, FrameLayout::Nv12Packed, FrameLayout::Nv12Padded})
        for (const FrameSize size : {kFrame360p, kFrame1080p, kFrame4K})
            benchmark::RegisterBenchmark(("Paint/" + LayoutName(layout) + "/" + SizeName(size)).c_str(),
                                         [=](benchmark::State &state) { Paint(state, size, layout); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
}
