#include "BenchFrame.h"
#include "BenchPane.h"
#include "Contest.h"
#include "Failures.h"
#include "HostThread.h"

#include <benchmark/benchmark.h>

#include <QMetaObject>
#include <QObject>

#include <memory>
#include <vector>

namespace {

constexpr int kBatch = 8; // submissions before the posted repaint requests are drained

// Each contender cycles through so many frames and targets, as a host does with its decoders' surfaces and
// its panes. Where a buffer happens to lie in physical memory makes several per cent; this evens it out.
constexpr std::size_t kLanes = 8;

// A frame of a contender's own and where it copies it to. With a shared one, the second to run would find its
// source in the cache.
struct CopyLane
{
    explicit CopyLane(const BenchFrame &model) : frame(model), pTarget(frame.MakeTarget()) {}
    BenchFrame frame;
    std::unique_ptr<std::uint8_t[]> pTarget;
};

struct RendererLane
{
    explicit RendererLane(const BenchFrame &model) : frame(model), renderer(MakeRenderer())
    {
        renderer.showFrame(frame.Desc()); // allocates its frame buffer
    }
    BenchFrame frame;
    xelt::Renderer renderer; // stays hidden, so that nothing paints it
};

template <typename Lane> Lane &Next(std::vector<Lane> &lanes, std::size_t &nNext)
{
    nNext = (nNext + 1) % lanes.size();
    return lanes[nNext];
}

enum Contender : std::size_t {
    Library,
    Memcpy,
    LayoutCopy, // row by row where the layout asks for it, else the same as Memcpy: the noise of it all
    CopyAndPost // LayoutCopy, and an empty functor posted to the GUI thread as a repaint request is
};

// GUI thread; the contest's rounds belong on the host thread.
class SubmitContest
{
public:
    explicit SubmitContest(const BenchFrame &frame);

    Contest &Rounds() { return m_contest; }
    bool AcceptedAll() const { return m_blAccepted; }

private:
    void Submit();
    void Copy(Contender contender, bool blRows);
    void CopyAndRequest(bool blRows);

    QObject m_receiver;
    std::vector<RendererLane> m_renderers;
    std::vector<CopyLane> m_copies[CopyAndPost + 1];
    std::size_t m_aNext[CopyAndPost + 1] = {};
    bool m_blAccepted = true;
    Contest m_contest;
};

SubmitContest::SubmitContest(const BenchFrame &frame)
    : m_contest({
          [this] { Submit(); },
          [this] { Copy(Memcpy, false); },
          [this, blRows = frame.HasPaddedRows()] { Copy(LayoutCopy, blRows); },
          [this, blRows = frame.HasPaddedRows()] { CopyAndRequest(blRows); },
      })
{
    for (std::size_t i = 0; i < kLanes; ++i) {
        m_renderers.emplace_back(frame);
        for (const Contender contender : {Memcpy, LayoutCopy, CopyAndPost})
            m_copies[contender].emplace_back(frame);
    }
}

void SubmitContest::Submit()
{
    RendererLane &lane = Next(m_renderers, m_aNext[Library]);
    m_blAccepted = lane.renderer.showFrame(lane.frame.Desc()) && m_blAccepted;
}

void SubmitContest::Copy(Contender contender, bool blRows)
{
    CopyLane &lane = Next(m_copies[contender], m_aNext[contender]);
    if (blRows)
        lane.frame.CopyRows(lane.pTarget.get());
    else
        lane.frame.CopyOnce(lane.pTarget.get());
    benchmark::ClobberMemory();
}

void SubmitContest::CopyAndRequest(bool blRows)
{
    Copy(CopyAndPost, blRows);
    QMetaObject::invokeMethod(
        &m_receiver, [] {}, Qt::QueuedConnection);
}

void RunSubmit(benchmark::State &state, FrameLayout layout, FrameSize size)
{
    const BenchFrame frame(size, layout);
    SubmitContest contest(frame);
    HostThread host;
    host.Run([&] { contest.Rounds().WarmUp(kLanes); });
    DrainEvents();
    while (state.KeepRunningBatch(kBatch)) {
        double dSeconds = 0;
        host.Run([&] {
            for (int i = 0; i < kBatch; ++i)
                dSeconds += contest.Rounds().RunRound();
        });
        state.SetIterationTime(dSeconds);
        DrainEvents();
    }
    if (!contest.AcceptedAll())
        return FailBench(state, "the library refused a frame");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(frame.PictureBytes()));
    state.counters["of_memcpy"] = contest.Rounds().Ratio(Library, Memcpy);
    state.counters["of_copy_and_post"] = contest.Rounds().Ratio(Library, CopyAndPost);
    if (frame.HasPaddedRows())
        state.counters["of_row_memcpy"] = contest.Rounds().Ratio(Library, LayoutCopy);
    else
        state.counters["noise"] = contest.Rounds().Ratio(LayoutCopy, Memcpy);
}

} // namespace

void RegisterSubmitBenchmarks()
{
    for (const FrameLayout layout : {FrameLayout::Yv12, FrameLayout::Nv12Packed, FrameLayout::Nv12Padded})
        for (const FrameSize size : {kFrame360p, kFrame1080p, kFrame4K})
            benchmark::RegisterBenchmark(("Submit/" + LayoutName(layout) + "/" + SizeName(size)).c_str(),
                                         [=](benchmark::State &state) { RunSubmit(state, layout, size); })
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
}
