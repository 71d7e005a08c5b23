#include "BenchFrame.h"
#include "BenchPane.h"
#include "Contest.h"
#include "Failures.h"
#include "MixedWindow.h"

#include <benchmark/benchmark.h>

#include <QImage>

#include <cstdio>
#include <vector>

namespace {

constexpr int kWarmUpRounds = 2;

// The sub-image renderer's upload, which updates textures, beside the other's, which makes them anew: paints
// of nPanes panes of either type in turn.
void Upload(benchmark::State &state, FrameSize size, FrameLayout layout, int nPanes)
{
    const BenchFrame frame(size, layout);
    MixedWindow window;
    std::vector<std::size_t> updating;
    std::vector<std::size_t> respecifying;
    for (int i = 0; i < nPanes; ++i) {
        updating.push_back(window.Add(xelt::RendererType::YuvSubImage, QSize(160, 90)));
        respecifying.push_back(window.Add(xelt::RendererType::Yuv, QSize(160, 90)));
    }
    for (std::size_t nPane = 0; nPane < updating.size() * 2; ++nPane)
        if (!window.Pane(nPane).showFrame(frame.Desc()))
            return FailBench(state, "the library refused a frame");
    if (!window.Open())
        return FailBench(state, "the panes got no OpenGL context");
    if (window.Widget(updating[0]).grabFramebuffer() != window.Widget(respecifying[0]).grabFramebuffer())
        return FailBench(state, "the two renderers show different pictures");

    const auto paint = [&](const std::vector<std::size_t> &panes) {
        for (const std::size_t nPane : panes)
            PaintNow(window.Widget(nPane));
    };
    Contest contest({[&] { paint(updating); }, [&] { paint(respecifying); }});
    contest.WarmUp(kWarmUpRounds);
    for (auto _ : state)
        state.SetIterationTime(contest.RunRound());
    state.counters["of_respecify"] = contest.Ratio(0, 1);
}

// A host that answers with text records, the same or other ones for every frame.
struct LabelHost
{
    std::vector<XeltDrawInfo> records;
    bool blChanging = false;
    int nFrame = 0;

    LabelHost(int nLabels, bool blChange) : blChanging(blChange)
    {
        for (int i = 0; i < nLabels; ++i) {
            XeltDrawInfo record{};
            record.nType = DRAWINFO_TEXT;
            record.nColor = 0x00FFFFFF;
            record.nSize = 10;
            record.nPointNum = 2;
            record.aPoints[0] = {4 + i % 6 * 100, 12 + i / 6 * 40};
            record.aPoints[1] = {100 + i % 6 * 100, 30 + i / 6 * 40};
            record.nTextEncoding = DRAWINFO_ENCODING_UTF8;
            std::snprintf(record.aText, sizeof record.aText, "label %d", i);
            records.push_back(record);
        }
    }

    static int32_t Deliver(void *, const XeltDrawInfoRequest *pRequest, int32_t, void *pUser)
    {
        auto &host = *static_cast<LabelHost *>(pUser);
        ++host.nFrame;
        int nLabel = 0;
        for (XeltDrawInfo &record : host.records) {
            if (host.blChanging)
                std::snprintf(record.aText, sizeof record.aText, "label %d %d", nLabel, host.nFrame);
            ++nLabel;
            xelt::addDrawInfo(*pRequest, record);
        }
        return 0;
    }
};

// Paints of a pane with labels beside paints of one without; the submission before each is not counted. What
// the labels make the window do afterwards is counted by itself.
void Labels(benchmark::State &state, int nLabels, bool blChanging)
{
    const BenchFrame frame({64, 36}, FrameLayout::Yv12);
    LabelHost host(nLabels, blChanging);
    MixedWindow window;
    const std::size_t nLabelled = window.Add(xelt::RendererType::YuvSubImage, QSize(640, 360));
    const std::size_t nPlain = window.Add(xelt::RendererType::YuvSubImage, QSize(640, 360));
    if (!window.Pane(nLabelled).setDrawInfoCallback({&LabelHost::Deliver, &host}))
        return FailBench(state, "the library refused the callback");
    if (!window.Open())
        return FailBench(state, "the panes got no OpenGL context");

    bool blAccepted = true;
    struct Times
    {
        double dPaint = 0;
        double dWindow = 0;
    };
    const auto timesOf = [&](std::size_t nPane) {
        blAccepted = window.Pane(nPane).showFrame(frame.Desc()) && blAccepted;
        Times times;
        times.dPaint = Seconds([&] { PaintNow(window.Widget(nPane)); });
        times.dWindow = Seconds(DrainEvents);
        return times;
    };
    for (int i = 0; i < 10; ++i) {
        timesOf(nLabelled);
        timesOf(nPlain);
    }
    std::vector<double> ratios;
    std::vector<double> added;
    std::vector<double> addedToWindow;
    for (auto _ : state) {
        const bool blPlainFirst = added.size() % 2 == 0;
        Times plain;
        if (blPlainFirst)
            plain = timesOf(nPlain);
        const Times labelled = timesOf(nLabelled);
        if (!blPlainFirst)
            plain = timesOf(nPlain);
        state.SetIterationTime(labelled.dPaint);
        ratios.push_back(labelled.dPaint / plain.dPaint);
        added.push_back((labelled.dPaint - plain.dPaint) * 1e6);
        addedToWindow.push_back((labelled.dWindow - plain.dWindow) * 1e6);
    }
    if (!blAccepted)
        return FailBench(state, "the library refused a frame");
    const auto labels = window.Widget(nLabelled).findChildren<QWidget *>();
    if (labels.size() != nLabels)
        return FailBench(state, "the pane does not carry its labels");
    state.counters["of_unlabelled"] = Median(std::move(ratios));
    state.counters["added_us"] = Median(std::move(added));
    state.counters["window_added_us"] = Median(std::move(addedToWindow));
}

} // namespace

void RegisterSubImageBenchmarks()
{
    for (const FrameLayout layout : {FrameLayout::Yv12, FrameLayout::Nv12Packed})
        for (const FrameSize size : {kFrame1080p, kFrame4K})
            for (const int nPanes : {1, 16})
                benchmark::RegisterBenchmark(
                    ("Upload/" + LayoutName(layout) + "/" + SizeName(size) + "/" + std::to_string(nPanes))
                        .c_str(),
                    [=](benchmark::State &state) { Upload(state, size, layout, nPanes); })
                    ->UseManualTime()
                    ->Unit(benchmark::kMicrosecond);
    for (const bool blChanging : {false, true})
        for (const int nLabels : {0, 10, 48})
            benchmark::RegisterBenchmark(
                ("Labels/" + std::string(blChanging ? "changing" : "same") + "/" + std::to_string(nLabels))
                    .c_str(),
                [=](benchmark::State &state) { Labels(state, nLabels, blChanging); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
}
