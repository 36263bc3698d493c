# The Debian package, for "cpack --config"; scripts/package/linux.sh gives the version, the maintainer and the folder of what
# goes into /usr. One package: a program that most install it for, and a static library with what belongs to it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME veltranoframework)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "documents, Access databases and settings: C++ library and program")
set(CPACK_PACKAGE_DESCRIPTION
"The program veltrano makes PDF documents of texts and tables, moves tables
into and out of Access databases, and checks them. The C++20 library, with
headers, a CMake package and a pkg-config file, writes PDF and KML files,
keeps settings in XML and INI files, saves JPEG and PNG pictures, and reads
and writes Access databases. The manual and samples are included.")
# Of the program; programs that link the static library need the development packages as well.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "g++, libpng-dev, libjpeg62-turbo-dev, libexpat1-dev, libpugixml-dev, libmbedtls-dev")
