# veltrano_library(<folder> SOURCES ... [PORTABLE_PAIRS name ...] [LIBRARIES ...] [PRIVATE_LIBRARIES ...])
#
# Makes the static library veltrano_<folder>. PORTABLE_PAIRS names the files that exist for each operating system, as
# <name>_windows.cpp and <name>_posix.cpp.
function(veltrano_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;PORTABLE_PAIRS;LIBRARIES;PRIVATE_LIBRARIES" ${ARGN})
  if(WIN32)
    set(system windows)
  else()
    set(system posix)
  endif()
  list(TRANSFORM ARG_PORTABLE_PAIRS APPEND "_${system}.cpp")
  add_library(veltrano_${folder} STATIC ${ARG_SOURCES} ${ARG_PORTABLE_PAIRS})
  target_link_libraries(veltrano_${folder}
    PUBLIC veltrano_compiler ${ARG_LIBRARIES}
    PRIVATE ${ARG_PRIVATE_LIBRARIES})
endfunction()
