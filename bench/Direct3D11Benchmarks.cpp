// The benchmarks of xeltbench_d3d11: a program of its own because the library that stands before EGL in it
// notices every draw call.

void RegisterBlitBenchmarks();
void RegisterHardwareBenchmarks();

void RegisterBenchmarks();

void RegisterBenchmarks()
{
    RegisterBlitBenchmarks();
    RegisterHardwareBenchmarks();
}
