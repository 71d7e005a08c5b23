// Stands where Qt's platform plugins look up GL by name, and gives them what the recorder makes of it. On Linux the
// executable exports the functions that they look up with (ENABLE_EXPORTS).
#pragma once

namespace xelttest {

using GlFunction = void (*)();

// What Qt gets for the function that was found under the name; null for null.
GlFunction wrapGl(const char *pszName, GlFunction pfnFound);

} // namespace xelttest
