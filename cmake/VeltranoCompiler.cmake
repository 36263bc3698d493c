# Warnings, hardening and sanitizers: one interface target that every library of the project links.

add_library(veltrano_compiler INTERFACE)
target_include_directories(veltrano_compiler INTERFACE "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
target_compile_features(veltrano_compiler INTERFACE cxx_std_20)
target_compile_options(veltrano_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  $<$<BOOL:${VELTRANO_WARNINGS_AS_ERRORS}>:-Werror>)

if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # GCC 12 warns of overlaps inside std::string's operator+ that cannot happen (its bug 105651).
  target_compile_options(veltrano_compiler INTERFACE -Wno-restrict)
endif()

if(WIN32)
  # Unicode entry points unless a call names the ANSI one; Windows 7 and later.
  target_compile_definitions(veltrano_compiler INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
  # The DLL must need nothing but Windows: the compiler's runtime is linked in.
  target_link_options(veltrano_compiler INTERFACE
    -static -static-libgcc -static-libstdc++ -Wl,--dynamicbase -Wl,--nxcompat
    # The same sources give the same bytes.
    -Wl,--no-insert-timestamp)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(veltrano_compiler INTERFACE -Wl,--high-entropy-va)
  else()
    # SSE2 arithmetic, so that doubles round as on the other targets; hosts call with the stack aligned to
    # only 4 bytes.
    target_compile_options(veltrano_compiler INTERFACE -msse2 -mfpmath=sse -mstackrealign)
  endif()
else()
  target_compile_options(veltrano_compiler INTERFACE -fstack-protector-strong)
endif()

if(VELTRANO_SYMBOLS)
  # Sources are named from the project's folder, wherever that is.
  target_compile_options(veltrano_compiler INTERFACE -g1 "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
  if(WIN32)
    target_compile_options(veltrano_compiler INTERFACE "-ffile-prefix-map=${VELTRANO_WINDOWS_LIBRARIES}=./libraries")
  endif()
endif()

if(VELTRANO_SANITIZE)
  target_compile_options(veltrano_compiler INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(veltrano_compiler INTERFACE -fsanitize=address,undefined)
endif()

if(VELTRANO_FUZZERS)
  # The libraries under test are instrumented too: coverage guides the fuzzer, the sanitizers find the faults.
  target_compile_options(veltrano_compiler INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(veltrano_compiler INTERFACE -fsanitize=address,undefined)
endif()

find_program(VELTRANO_CCACHE ccache)
if(VELTRANO_CCACHE AND PROJECT_IS_TOP_LEVEL)
  set(CMAKE_C_COMPILER_LAUNCHER "${VELTRANO_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${VELTRANO_CCACHE}")
endif()
