#pragma once

/// Marks what libplaz exports; everything else stays hidden.
#if defined(PLAZ_BUILD) && defined(_WIN32)
#define PLAZ_API __declspec(dllexport)
#elif defined(_WIN32)
#define PLAZ_API // the linker finds what is imported by itself
#else
#define PLAZ_API __attribute__((visibility("default")))
#endif
