# Builds for Windows 10 x64 with mingw-w64: cmake --toolchain cmake/toolchain-windows-x64.cmake. The libraries are those
# that scripts/setup-windows built, in the directory that the environment's PLAZ_WINDOWS_DEPS names.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

if(NOT PLAZ_WINDOWS_DEPS)
  if(NOT "$ENV{PLAZ_WINDOWS_DEPS}" STREQUAL "")
    set(deps $ENV{PLAZ_WINDOWS_DEPS})
  elseif(NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
    set(deps $ENV{XDG_CACHE_HOME}/plaz/windows-x64)
  else()
    set(deps $ENV{HOME}/.cache/plaz/windows-x64)
  endif()
  get_filename_component(deps ${deps} REALPATH)
  set(PLAZ_WINDOWS_DEPS ${deps} CACHE PATH "Libraries for Windows that scripts/setup-windows built")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLAZ_WINDOWS_DEPS)
if(NOT EXISTS ${PLAZ_WINDOWS_DEPS}/stamp)
  message(FATAL_ERROR "${PLAZ_WINDOWS_DEPS} does not hold the libraries for Windows. Run scripts/setup-windows.")
endif()

# The -posix compilers: std::thread and its like need winpthreads.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_C_FLAGS_INIT -D_WIN32_WINNT=0x0A00)
set(CMAKE_CXX_FLAGS_INIT -D_WIN32_WINNT=0x0A00)

set(CMAKE_FIND_ROOT_PATH ${PLAZ_WINDOWS_DEPS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${PLAZ_WINDOWS_DEPS}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")

# Wine takes file names beyond ASCII only in a locale that has them, and by default mixes its remarks into stderr.
set(CMAKE_CROSSCOMPILING_EMULATOR env LC_ALL=C.UTF-8 WINEDEBUG=-all wine)
