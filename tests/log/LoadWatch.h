// The modules that this program's own code loads, the library's objects in it included.
#pragma once

namespace xelttest {

// From here on the function is told the path of each module that is loaded, if loading it succeeds. Call it once.
void watchLoads(void (*pfnLoaded)(const char *pszPath));

// The system's function by which the last of them was loaded, and the flags that it was given, if it takes any.
struct LoadCall
{
    const char *pszFunction = "";
    unsigned nFlags = 0;
};
LoadCall lastLoadCall();

} // namespace xelttest
