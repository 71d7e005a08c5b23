// Functions that a module imports, replaced for that module alone.
#pragma once

namespace xelttest {

// Makes the module's calls of the imported function go to pReplacement. What they went to before; null, and
// nothing changes, when the module imports no function of that name. pModule is a module's handle, null for the
// program.
void *replaceImport(void *pModule, const char *pszName, void *pReplacement);

} // namespace xelttest
