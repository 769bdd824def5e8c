# Warnings, sanitizers and hardening: one interface target that everything links.
include_guard()
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(CCACHE_PROGRAM ccache)
  if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
  endif()
endif()

add_library(wattlark_flags INTERFACE)
set(versionText "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
if(PROJECT_VERSION_PATCH)
  string(APPEND versionText ".${PROJECT_VERSION_PATCH}")
endif()
target_compile_definitions(wattlark_flags INTERFACE WATTLARK_VERSION="${versionText}")

if(MSVC)
  target_compile_options(wattlark_flags INTERFACE /W4 /utf-8 $<$<BOOL:${WATTLARK_WERROR}>:/WX>)
  return()
endif()

target_compile_options(wattlark_flags INTERFACE
  -Wall -Wextra -Wshadow -Wconversion
  # clang counts sign changes to -Wconversion, gcc does not: the same code has to pass both.
  $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-sign-conversion>
  # gcc 12 at -O2 takes strings that are joined in place for overlapping copies.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${WATTLARK_WERROR}>:-Werror>)

if(WATTLARK_SANITIZE)
  target_compile_options(wattlark_flags INTERFACE
    -fsanitize=${WATTLARK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # gcc's flow analysis does not see through the instrumentation.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(wattlark_flags INTERFACE -fsanitize=${WATTLARK_SANITIZE})
else()
  target_compile_options(wattlark_flags INTERFACE -fstack-protector-strong)
  target_compile_definitions(wattlark_flags INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:_FORTIFY_SOURCE=2>)
endif()

if(WATTLARK_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "WATTLARK_FUZZ needs clang: use the preset fuzz")
  endif()
  target_compile_options(wattlark_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(UNIX AND NOT APPLE)
  target_link_options(wattlark_flags INTERFACE
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:--as-needed)
endif()
