// Part of the test executables in sanitizer builds only: modules stay loaded. Leaks are looked for when the
// process ends, and what a driver that is unloaded by then has kept could not be told from a leak of ours;
// and the thread sanitizer ends the process when a library that a suppression names is unloaded.
#include <dlfcn.h>

extern "C" int dlclose(void *) noexcept
{
    return 0;
}
