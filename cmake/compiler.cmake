# Warnings are errors everywhere; the release build is hardened, the debug build checks the standard library's use.
add_library(dravolt_options INTERFACE)
target_compile_options(dravolt_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-qual -Wcast-align -Wformat=2 -Wundef -Wnull-dereference -Wimplicit-fallthrough -Werror
  -fstack-protector-strong $<$<NOT:$<BOOL:${WIN32}>>:-fstack-clash-protection> -ffunction-sections -fdata-sections
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wno-subobject-linkage>
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op -Wuseless-cast>
  $<$<CONFIG:Release>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS>
  $<$<CONFIG:Debug>:-D_GLIBCXX_ASSERTIONS>)
target_link_options(dravolt_options INTERFACE -Wl,--gc-sections)
if(WIN32)
  target_compile_definitions(dravolt_options INTERFACE _WIN32_WINNT=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN)
else()
  target_link_options(dravolt_options INTERFACE -pie -Wl,-z,relro,-z,now,-z,noexecstack -Wl,--as-needed)
endif()
target_compile_features(dravolt_options INTERFACE cxx_std_20)

option(DRAVOLT_SANITIZE "address and undefined-behaviour sanitizers" OFF)
if(DRAVOLT_SANITIZE)
  target_compile_options(dravolt_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(dravolt_options INTERFACE -fsanitize=address,undefined)
endif()

option(DRAVOLT_FUZZ "the same sanitizers, and coverage for libFuzzer; needs Clang" OFF)
if(DRAVOLT_FUZZ)
  target_compile_options(dravolt_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(dravolt_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
endif()
