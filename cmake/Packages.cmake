# The Debian packages, one of each part that Install.cmake names.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGE_CONTACT "VELTA plug-in maintainers <maintainers@velta.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # it would become the first line of each package's own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL plugin development tools debug)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS  # whatever the mask of whoever builds them
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE velta-device-plugin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# velta_package(PART SECTION DEPENDS SUMMARY DESCRIPTION): the control file of one package.
function(velta_package part section depends summary description)
  string(TOUPPER ${part} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${VELTA_PACKAGE_${part}} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  # CPack makes the first line the summary and indents the others.
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
endfunction()

set(same_version "libveltadev (= ${PROJECT_VERSION})")
velta_package(plugin libs ""
  "device plug-in for VELTA devices"
  "A library that a video and access-control platform loads to reach access
controllers, door stations, cameras and recorders that speak VELTA.")
velta_package(development libdevel "${same_version}"
  "device plug-in for VELTA devices: the contract with hosts"
  "Headers for hosts in C and C++, examples, and files for CMake and pkg-config.")
velta_package(tools utils "${same_version}"
  "host and simulated devices for the VELTA device plug-in"
  "velta-host shows and runs devices through the plug-in, velta-sim simulates
devices to develop against, velta-check judges a library by the contract.")
velta_package(debug debug "${same_version}"
  "debug symbols for libveltadev"
  "Debuggers read them by themselves once the package is installed.")
foreach(part PLUGIN TOOLS)
  set(CPACK_DEBIAN_${part}_PACKAGE_SHLIBDEPS ON)
endforeach()
include(CPack)
