# Third-party libraries, each under one target name.
find_package(Threads REQUIRED)
find_package(CURL 7.85 REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(spdlog REQUIRED)

pkg_check_modules(jsoncpp REQUIRED IMPORTED_TARGET jsoncpp)
# The package is built with the standard library's strings, which changes the layout of its classes.
pkg_check_modules(tinyxml REQUIRED IMPORTED_TARGET tinyxml)
target_compile_definitions(PkgConfig::tinyxml INTERFACE TIXML_USE_STL)
# The archive, so that a host with another version in its process meets no clash.
find_package(pugixml REQUIRED)
find_library(VELTA_PUGIXML NAMES libpugixml.a pugixml REQUIRED)
add_library(velta_pugixml INTERFACE)
target_link_libraries(velta_pugixml INTERFACE ${VELTA_PUGIXML})
add_library(velta::pugixml ALIAS velta_pugixml)

if(VELTA_BUILD_TOOLS)
  pkg_check_modules(microhttpd REQUIRED IMPORTED_TARGET libmicrohttpd)
  find_package(CLI11 REQUIRED)
endif()
if(VELTA_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
if(VELTA_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
