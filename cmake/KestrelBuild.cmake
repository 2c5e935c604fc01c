# How every target of the project is compiled: language level, warnings, sanitizers, ccache and mold where they are installed.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET default)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(KESTREL_CCACHE ccache)
if(KESTREL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers are cached only when ccache may ignore the macros and times in them.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${KESTREL_CCACHE})
endif()

find_program(KESTREL_MOLD mold)

add_library(KestrelBuildFlags INTERFACE)
target_compile_options(KestrelBuildFlags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wnull-dereference -Wimplicit-fallthrough)
if(KESTREL_WARNINGS_AS_ERRORS)
  target_compile_options(KestrelBuildFlags INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Reported against code of the standard library that the optimiser has inlined: false in this compiler's releases.
  target_compile_options(KestrelBuildFlags INTERFACE -Wno-null-dereference -Wno-maybe-uninitialized -Wno-stringop-overflow
    -Wno-array-bounds -Wno-restrict -fpch-preprocess)
endif()
if(KESTREL_MOLD)
  target_link_options(KestrelBuildFlags INTERFACE -fuse-ld=mold)
endif()
if(KESTREL_SANITIZE)
  target_compile_options(KestrelBuildFlags INTERFACE -fsanitize=${KESTREL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(KestrelBuildFlags INTERFACE -fsanitize=${KESTREL_SANITIZE})
endif()
if(KESTREL_FUZZ)
  # Fuzzers are steered by what a run reaches; the assertions of the standard library tell what it should not have done.
  target_compile_options(KestrelBuildFlags INTERFACE -fsanitize=fuzzer-no-link -D_GLIBCXX_ASSERTIONS)
endif()
if(KESTREL_COVERAGE)
  target_compile_options(KestrelBuildFlags INTERFACE --coverage)
  target_link_options(KestrelBuildFlags INTERFACE --coverage)
endif()
