#pragma once

/// Marks what libplaz exports; everything else stays hidden.
#if defined(_WIN32)
#if defined(PLAZ_BUILD)
#define PLAZ_API __declspec(dllexport)
#else
#define PLAZ_API __declspec(dllimport)
#endif
#else
#define PLAZ_API __attribute__((visibility("default")))
#endif
