#pragma once

// The part of the Java native interface's header that differs by system, for Windows x64: Java kits bring that of the
// system they run on.
#define JNIEXPORT __declspec(dllexport)
#define JNIIMPORT __declspec(dllimport)
#define JNICALL __stdcall

typedef long jint;
typedef __int64 jlong;
typedef signed char jbyte;
