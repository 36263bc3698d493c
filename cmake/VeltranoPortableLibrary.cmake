# VeltranoFrameWork: the portable library that C++ programs link, made of all folders; static, or shared by
# BUILD_SHARED_LIBS with nothing to be seen but what include/veltrano/ declares.
include(GNUInstallDirs)

set(objects "")
foreach(folder base pdf kml settings imaging database eventlog)
  list(APPEND objects "$<TARGET_OBJECTS:veltrano_${folder}>")
endforeach()
add_library(VeltranoFrameWork ${objects})
add_library(VeltranoFrameWork::VeltranoFrameWork ALIAS VeltranoFrameWork)
set_target_properties(VeltranoFrameWork PROPERTIES
  OUTPUT_NAME veltranoframework LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_compile_features(VeltranoFrameWork INTERFACE cxx_std_20)
target_include_directories(VeltranoFrameWork INTERFACE
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>" "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
target_link_libraries(VeltranoFrameWork PRIVATE PNG::PNG JPEG::JPEG EXPAT::EXPAT pugixml::pugixml
  MbedTLS::mbedcrypto ${CMAKE_DL_LIBS})
# A text, unlike the path of a header, which -ffile-prefix-map may change.
target_compile_definitions(VeltranoFrameWork INTERFACE VELTRANO_INSTALLED
  "VELTRANO_METRICS_FOLDER=\"$<BUILD_INTERFACE:${VELTRANO_METRICS_FOLDER}>$<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${CMAKE_INSTALL_DATADIR}/veltranoframework/metrics>\"")
