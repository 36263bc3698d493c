# The libraries of others: ZLIB::ZLIB, PNG::PNG, JPEG::JPEG, EXPAT::EXPAT, pugixml::pugixml and MbedTLS::mbedcrypto, the
# same names for every target. On Linux they are the distribution's packages; for Windows scripts/build-windows-libraries.sh has put static ones into
# a cache folder, which the toolchain file makes the search root.

if(WIN32)
  if(NOT EXISTS "${VELTRANO_WINDOWS_LIBRARIES}/lib/libmbedcrypto.a")
    message(FATAL_ERROR "The Windows libraries are not built yet: run scripts/build-windows-libraries.sh")
  endif()

  # veltrano_static_package(<target> <library file> [target it needs ...])
  function(veltrano_static_package target file)
    add_library(${target} STATIC IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES
      IMPORTED_LOCATION "${VELTRANO_WINDOWS_LIBRARIES}/lib/${file}"
      INTERFACE_INCLUDE_DIRECTORIES "${VELTRANO_WINDOWS_LIBRARIES}/include"
      INTERFACE_LINK_LIBRARIES "${ARGN}")
  endfunction()
  veltrano_static_package(ZLIB::ZLIB libz.a)
  veltrano_static_package(PNG::PNG libpng16.a ZLIB::ZLIB)
  veltrano_static_package(JPEG::JPEG libjpeg.a)
  veltrano_static_package(EXPAT::EXPAT libexpat.a)
  target_compile_definitions(EXPAT::EXPAT INTERFACE XML_STATIC)
  veltrano_static_package(pugixml::pugixml libpugixml.a)
  veltrano_static_package(MbedTLS::mbedcrypto libmbedcrypto.a)
else()
  find_package(PNG REQUIRED)
  find_package(JPEG REQUIRED)
  find_package(EXPAT REQUIRED)
  find_package(pugixml CONFIG REQUIRED)
  find_package(MbedCrypto REQUIRED)
endif()
