#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <random>
#include <utility>
#include <vector>

// Times contenders against each other in rounds. Each round runs every contender once, in an order drawn
// anew, so that a drift of the machine's speed and what the one before leaves in the caches hit all alike.
// Not thread-safe; contenders run on the thread that calls RunRound.
class Contest
{
public:
    explicit Contest(std::vector<std::function<void()>> contenders);

    // Runs the contenders without taking their times.
    void WarmUp(int nRounds);

    // Returns the seconds that the first contender took.
    double RunRound();

    // Median over the rounds of (time of contender nOne / time of contender nOther).
    double Ratio(std::size_t nOne, std::size_t nOther) const;

private:
    std::vector<std::function<void()>> m_contenders;
    std::vector<std::vector<double>> m_seconds; // for each contender, its time in every round
    std::vector<std::size_t> m_order;
    std::mt19937 m_random{1}; // the same orders in every run
};

double Median(std::vector<double> values);

template <typename Action> double Seconds(Action &&action)
{
    const auto start = std::chrono::steady_clock::now();
    std::forward<Action>(action)();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}
