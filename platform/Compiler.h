// What differs between compilers.
#pragma once

#if defined(__GNUC__)
#define XELT_PRINTF(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
// The export list keeps these names; hidden visibility is the default for everything else.
#define XELT_EXPORT __attribute__((visibility("default")))
#else
#define XELT_PRINTF(formatIndex, firstArgument)
#define XELT_EXPORT
#endif
