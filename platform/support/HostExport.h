#pragma once

/// Marks what libplazhost exports; everything else stays hidden.
#if defined(_WIN32)
#if defined(PLAZHOST_BUILD)
#define HOST_API __declspec(dllexport)
#else
#define HOST_API __declspec(dllimport)
#endif
#else
#define HOST_API __attribute__((visibility("default")))
#endif
