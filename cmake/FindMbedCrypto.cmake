# find_package(MbedCrypto) defines MbedTLS::mbedcrypto, the library of ciphers and hashes of Mbed TLS, whose version 2 brings
# no CMake package. Installed beside the package of this library, which needs it.
find_path(MbedCrypto_INCLUDE_DIR mbedtls/aes.h)
find_library(MbedCrypto_LIBRARY mbedcrypto)
mark_as_advanced(MbedCrypto_INCLUDE_DIR MbedCrypto_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MbedCrypto DEFAULT_MSG MbedCrypto_LIBRARY MbedCrypto_INCLUDE_DIR)
if(MbedCrypto_FOUND AND NOT TARGET MbedTLS::mbedcrypto)
  add_library(MbedTLS::mbedcrypto UNKNOWN IMPORTED)
  set_target_properties(MbedTLS::mbedcrypto PROPERTIES
    IMPORTED_LOCATION "${MbedCrypto_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${MbedCrypto_INCLUDE_DIR}")
endif()
