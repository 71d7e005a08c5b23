#pragma once

#include <chrono>
#include <optional>

// Turns times in a stream into times to show it. Used by one thread.
class Pacer
{
public:
    using Clock = std::chrono::steady_clock;

    // When the picture at this time of the stream is due. The first one is due at once, and so is one that
    // comes more than half a second late: what is lost is not caught up with.
    Clock::time_point due(double seconds, Clock::time_point now)
    {
        const auto offset =
            std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
        if (!m_start || *m_start + offset + std::chrono::milliseconds(500) < now) {
            m_start = now - offset;
        }
        return *m_start + offset;
    }

    // The next picture is due at once, for instance after a pause.
    void restart() { m_start.reset(); }

private:
    std::optional<Clock::time_point> m_start;
};
