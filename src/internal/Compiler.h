// Hints to the compiler for the library's hot paths, empty where the compiler
// does not know them: they change how fast the code runs, never what it does.
#pragma once

#if defined(__GNUC__)
// Inlined even where the compiler's own estimate would make a call.
#define DUNX_ALWAYS_INLINE inline __attribute__((always_inline))
// Kept out of its callers, so that their fast path does not pay for it.
#define DUNX_NOINLINE __attribute__((noinline))
// Run rarely: laid out away from the hot code.
#define DUNX_COLD __attribute__((cold))
// A condition that is almost always false: its branch falls through.
#define DUNX_UNLIKELY(condition) __builtin_expect(!!(condition), 0)
#else
#define DUNX_ALWAYS_INLINE inline
#define DUNX_NOINLINE
#define DUNX_COLD
#define DUNX_UNLIKELY(condition) (condition)
#endif
