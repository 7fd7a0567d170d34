#pragma once

/// Marks what libplazhost exports; everything else stays hidden.
#if defined(PLAZHOST_BUILD) && defined(_WIN32)
#define HOST_API __declspec(dllexport)
#elif defined(_WIN32)
#define HOST_API // the linker finds what is imported by itself
#else
#define HOST_API __attribute__((visibility("default")))
#endif
