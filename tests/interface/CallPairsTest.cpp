// Every call while every other one is inside the same pane: it waits its turn, and where the pane has ended by then it
// is answered as one with an unknown handle.
#include "CallPairs.h"

#include <memory>
#include <string>
#include <thread>
#include <tuple>

namespace {

using namespace xelttest;

using Pair = std::tuple<int32_t, Call, Call>;

std::string nameOfPair(const testing::TestParamInfo<Pair> &info)
{
    return std::string(nameOf(std::get<1>(info.param))) + nameOf(std::get<2>(info.param)) +
           (std::get<0>(info.param) == XELT_RENDERER_YUV ? "Yuv" : "SubImage");
}

class CallPair : public CallPairs, public testing::WithParamInterface<Pair>
{
protected:
    void SetUp() override { open(std::get<0>(GetParam())); }

    const Call m_first = std::get<1>(GetParam());
    const Call m_second = std::get<2>(GetParam());

    // Two calls have a limit, and whatever comes after the end of the pane is refused.
    static void expectResult(Call call, const Timed &timed, bool blAfterTheEnd)
    {
        const bool blHasLimit = call == Call::Show || call == Call::GetWindow;
        const bool blMayBeRefused = (blHasLimit && timed.duration >= Milliseconds(500) - k_clockGrain) ||
                                    (blAfterTheEnd && call != Call::Release);
        EXPECT_TRUE(timed.nResult == 0 || (blMayBeRefused && timed.nResult == -1))
            << nameOf(call) << " answers " << timed.nResult;
    }
};

TEST_P(CallPair, BothComeBackWithTheirResults)
{
    std::unique_ptr<Background> pFirst;
    std::unique_ptr<Background> pSecond;
    holdAt(m_first);
    startFirst(m_first, pFirst);
    std::thread opener;
    if (m_second == Call::Destroy) {
        opener = std::thread([this] {
            letItBegin();
            m_gate.open();
        });
    }
    start(m_second, pSecond);
    letItBegin();
    m_gate.open();
    if (opener.joinable()) {
        opener.join();
    }
    // The question for the window waits without holding anybody up, so the end may overtake it.
    expectResult(m_first, end(*pFirst), m_first == Call::GetWindow && endsThePane(m_second));
    if (pSecond != nullptr) {
        expectResult(m_second, end(*pSecond), endsThePane(m_first));
    }
    expectState(endsThePane(m_first) || endsThePane(m_second));
}

const auto k_types = testing::Values(XELT_RENDERER_YUV, XELT_RENDERER_YUV_SUBIMAGE);

INSTANTIATE_TEST_SUITE_P(, CallPair,
                         testing::Combine(k_types,
                                          testing::Values(Call::Show, Call::Set, Call::GetWindow, Call::Clear,
                                                          Call::Release),
                                          testing::Values(Call::Show, Call::Set, Call::Get, Call::GetWindow,
                                                          Call::Clear, Call::Release, Call::Destroy)),
                         nameOfPair);

// The first is the GUI thread's, inside the host's callback.
class CallWhileResizing : public CallPair
{
};

TEST_P(CallWhileResizing, BothComeBackWithTheirResults)
{
    std::unique_ptr<Background> pSecond;
    holdAt(m_first);
    std::thread opener([&] {
        EXPECT_TRUE(m_gate.waitForEntry());
        start(m_second, pSecond);
        letItBegin();
        m_gate.open();
    });
    make(m_first);
    opener.join();
    expectResult(m_second, end(*pSecond), false);
    expectState(endsThePane(m_second));
}

INSTANTIATE_TEST_SUITE_P(, CallWhileResizing,
                         testing::Combine(k_types, testing::Values(Call::Resize),
                                          testing::Values(Call::Show, Call::Set, Call::Get, Call::GetWindow,
                                                          Call::Clear, Call::Release)),
                         nameOfPair);

// A call that waits for one inside while the pane is ended: it is still waiting when the end comes.
class CallWaitingAtTheEnd : public CallPair
{
};

TEST_P(CallWaitingAtTheEnd, ComesBack)
{
    std::unique_ptr<Background> pInside;
    std::unique_ptr<Background> pWaiting;
    std::unique_ptr<Background> pEnding;
    holdAt(Call::Show);
    startFirst(Call::Show, pInside);
    start(m_first, pWaiting);
    letItBegin();
    std::thread opener([this] {
        letItBegin();
        m_gate.open();
    });
    start(m_second, pEnding);
    opener.join();
    EXPECT_EQ(end(*pInside).nResult, 0);
    const int32_t nWaited = end(*pWaiting).nResult;
    EXPECT_TRUE(nWaited == 0 || (nWaited == -1 && m_first != Call::Release)) << nWaited;
    if (pEnding != nullptr) {
        EXPECT_EQ(end(*pEnding).nResult, 0);
    }
    expectState(true);
}

INSTANTIATE_TEST_SUITE_P(, CallWaitingAtTheEnd,
                         testing::Combine(k_types,
                                          testing::Values(Call::Show, Call::Set, Call::Get, Call::GetWindow,
                                                          Call::Clear, Call::Release),
                                          testing::Values(Call::Release, Call::Destroy)),
                         nameOfPair);

} // namespace
