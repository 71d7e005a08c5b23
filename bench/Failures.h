#pragma once

#include <benchmark/benchmark.h>

// Benchmarks whose comparison would mean nothing; main turns any into a non-zero exit status, which Google
// Benchmark itself does not.
inline int g_nBenchFailures = 0;

inline void FailBench(benchmark::State &state, const char *pReason)
{
    ++g_nBenchFailures;
    state.SkipWithError(pReason);
}
