option(PLAZ_TESTS "Build the tests" ON)
option(PLAZ_PYTHON "Build the Python module" ON)
option(PLAZ_JAVA "Build the Java binding and the catalog browser" ON)
option(PLAZ_BENCH "Build the benchmarks" OFF)
option(PLAZ_FUZZ "Build the fuzz targets (clang only)" OFF)
option(PLAZ_WERROR "Treat warnings as errors" OFF)
set(PLAZ_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(PLAZ_WERROR)
  add_compile_options(-Werror)
endif()
# Sources name themselves relative to the tree in messages, however a compiler's cache has spelt the way to it.
file(RELATIVE_PATH way_to_sources ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR})
add_compile_options(-fmacro-prefix-map=${way_to_sources}/= -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(PLAZ_SANITIZE)
  add_compile_options(-fsanitize=${PLAZ_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${PLAZ_SANITIZE})
  # RapidJSON's stack starts from a null pointer, which clang counts as an overflow.
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    add_compile_options(-fno-sanitize=pointer-overflow)
  endif()
endif()

# The distribution's Python, where there is one, rather than one that happens to come first in PATH: the packages that
# setup installs are for it.
if(EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python to build and test with")
endif()

find_program(PLAZ_CCACHE ccache)
if(PLAZ_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${PLAZ_CCACHE})
endif()
