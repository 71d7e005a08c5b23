// The benchmarks of xeltbench.

void RegisterSubmitBenchmarks();
void RegisterPaintBenchmarks();
void RegisterPanesBenchmarks();
void RegisterSubImageBenchmarks();

void RegisterBenchmarks();

void RegisterBenchmarks()
{
    RegisterSubmitBenchmarks();
    RegisterPaintBenchmarks();
    RegisterPanesBenchmarks();
    RegisterSubImageBenchmarks();
}
