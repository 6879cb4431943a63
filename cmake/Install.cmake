# What is installed, in the parts that become packages: plugin, development, tools, debug.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(VELTA_GZIP gzip REQUIRED)

# The folder of this machine's architecture also under a prefix such as /usr/local, so that packages and a plain
# installation look alike.
set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE})

# The library is loaded by its path and never linked: it stands in a folder of its own, with the programs that look
# for it beside themselves. Links bring those into the path.
set(VELTA_INSTALL_FOLDER ${CMAKE_INSTALL_LIBDIR}/veltadev)
set(VELTA_PACKAGE_plugin libveltadev)
set(VELTA_PACKAGE_development libveltadev-dev)
set(VELTA_PACKAGE_tools velta-tools)
set(VELTA_PACKAGE_debug libveltadev-dbgsym)

# As a file, not as a target: it is stripped already, and another strip would take the link to its debug information.
install(FILES $<TARGET_FILE:veltadev> DESTINATION ${VELTA_INSTALL_FOLDER} COMPONENT plugin)

set(installed_programs velta-host velta-sim)
if(TARGET velta-check)
  list(APPEND installed_programs velta-check)
endif()
install(TARGETS ${installed_programs} DESTINATION ${VELTA_INSTALL_FOLDER} COMPONENT tools)
file(RELATIVE_PATH from_bin /${CMAKE_INSTALL_BINDIR} /${VELTA_INSTALL_FOLDER})
foreach(program ${installed_programs})
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/packaging/bin)
  file(CREATE_LINK ${from_bin}/${program} ${CMAKE_BINARY_DIR}/packaging/bin/${program} SYMBOLIC)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/bin/${program} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endforeach()

# Manual pages and completions are made from what the programs say when they are asked for --help.
list(JOIN installed_programs "," page_names)
set(page_files)
foreach(program ${installed_programs})
  set(pages ${CMAKE_BINARY_DIR}/packaging/pages/${program})
  add_custom_command(OUTPUT ${pages}.1.gz ${pages}.bash ${pages}.zsh
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/packaging/help_pages.py $<TARGET_FILE:${program}>
            --version ${PROJECT_VERSION} --changelog ${CMAKE_SOURCE_DIR}/packaging/changelog
            --programs ${page_names} --output ${CMAKE_BINARY_DIR}/packaging/pages
    COMMAND ${VELTA_GZIP} -9nf ${pages}.1
    DEPENDS ${program} ${CMAKE_SOURCE_DIR}/packaging/help_pages.py ${CMAKE_SOURCE_DIR}/packaging/changelog
    COMMENT "Writing the manual page and the completions of ${program}" VERBATIM)
  list(APPEND page_files ${pages}.1.gz)
  install(FILES ${pages}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${pages}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME ${program} COMPONENT tools)
  install(FILES ${pages}.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
    RENAME _${program} COMPONENT tools)
endforeach()
add_custom_target(velta_pages ALL DEPENDS ${page_files})

install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/velta DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
configure_package_config_file(packaging/VeltaDevConfig.cmake.in packaging/VeltaDevConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VeltaDev
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR VELTA_INSTALL_FOLDER)
write_basic_package_version_file(packaging/VeltaDevConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_BINARY_DIR}/packaging/VeltaDevConfig.cmake ${CMAKE_BINARY_DIR}/packaging/VeltaDevConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VeltaDev COMPONENT development)
# Its prefix is known when it is installed: packages stand in another one than a plain installation.
install(CODE "
  set(CMAKE_INSTALL_INCLUDEDIR [[${CMAKE_INSTALL_INCLUDEDIR}]])
  set(VELTA_INSTALL_FOLDER [[${VELTA_INSTALL_FOLDER}]])
  set(PROJECT_VERSION [[${PROJECT_VERSION}]])
  set(PROJECT_DESCRIPTION [[${PROJECT_DESCRIPTION}]])
  configure_file([[${CMAKE_SOURCE_DIR}/packaging/velta.pc.in]] [[${CMAKE_BINARY_DIR}/packaging/velta.pc]] @ONLY)
  file(INSTALL [[${CMAKE_BINARY_DIR}/packaging/velta.pc]]
    DESTINATION \${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig)" COMPONENT development)

# Debuggers find this file by the number that the linker gave the library.
install(CODE "
  execute_process(COMMAND ${CMAKE_READELF} --notes [[$<TARGET_FILE:veltadev>]] OUTPUT_VARIABLE notes)
  if(NOT notes MATCHES \"Build ID: ([0-9a-f][0-9a-f])([0-9a-f]+)\")
    message(FATAL_ERROR \"the library has no build number\")
  endif()
  file(INSTALL [[$<TARGET_FILE:veltadev>.debug]] RENAME \${CMAKE_MATCH_2}.debug
    DESTINATION \${CMAKE_INSTALL_PREFIX}/lib/debug/.build-id/\${CMAKE_MATCH_1})" COMPONENT debug)

execute_process(COMMAND ${VELTA_GZIP} -9nc ${CMAKE_SOURCE_DIR}/packaging/changelog
  OUTPUT_FILE ${CMAKE_BINARY_DIR}/packaging/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
foreach(part plugin development tools debug)
  install(FILES ${CMAKE_SOURCE_DIR}/packaging/copyright ${CMAKE_BINARY_DIR}/packaging/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${VELTA_PACKAGE_${part}} COMPONENT ${part})
endforeach()
install(FILES examples/README.md examples/CMakeLists.txt examples/host.c examples/host.cpp
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${VELTA_PACKAGE_development}/examples COMPONENT development)
