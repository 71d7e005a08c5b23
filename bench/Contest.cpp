#include "Contest.h"

#include <algorithm>
#include <numeric>

Contest::Contest(std::vector<std::function<void()>> contenders)
    : m_contenders(std::move(contenders)), m_seconds(m_contenders.size()), m_order(m_contenders.size())
{
    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
}

void Contest::WarmUp(int nRounds)
{
    for (int i = 0; i < nRounds; ++i)
        for (const auto &contender : m_contenders)
            contender();
}

double Contest::RunRound()
{
    std::shuffle(m_order.begin(), m_order.end(), m_random);
    for (const std::size_t nIndex : m_order)
        m_seconds[nIndex].push_back(Seconds(m_contenders[nIndex]));
    return m_seconds.front().back();
}

double Contest::Ratio(std::size_t nOne, std::size_t nOther) const
{
    std::vector<double> ratios;
    for (std::size_t i = 0; i < m_seconds[nOne].size(); ++i)
        ratios.push_back(m_seconds[nOne][i] / m_seconds[nOther][i]);
    return Median(std::move(ratios));
}

double Median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
