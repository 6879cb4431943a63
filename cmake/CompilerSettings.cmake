# Flags that every target of the project is built with. Third-party headers come in as system headers, so
# they raise no warnings.
add_library(velta_settings INTERFACE)
target_compile_features(velta_settings INTERFACE cxx_std_20 c_std_99)
target_compile_options(velta_settings INTERFACE
  -Wall -Wextra -Werror -Wshadow -Wcast-align -Wformat=2 -Wundef
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  -fstack-protector-strong
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wthread-safety>
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>     # wrong about concatenated strings in g++ 12
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)  # unique symbols would make the library impossible to unload
target_link_options(velta_settings INTERFACE -Wl,-z,relro,-z,now -Wl,-z,noexecstack)

set(VELTA_SANITIZE "" CACHE STRING "Sanitizers to build with, as the compiler names them (address,undefined or thread)")
if(VELTA_SANITIZE)
  target_compile_options(velta_settings INTERFACE
    -fsanitize=${VELTA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1)
  # Sanitized code of <regex> looks uninitialized to g++ 12.
  target_compile_options(velta_settings INTERFACE
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-maybe-uninitialized>)
  if(VELTA_SANITIZE MATCHES undefined)
    # That check opens a pipe to look at memory, and reports good objects where tests use up the descriptors.
    target_compile_options(velta_settings INTERFACE -fno-sanitize=vptr)
  endif()
  target_link_options(velta_settings INTERFACE -fsanitize=${VELTA_SANITIZE})
else()
  target_compile_options(velta_settings INTERFACE $<$<CONFIG:Release>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()

# velta_static_library(NAME source...): a library for linking into the shared one, its symbols hidden. What the
# shared one does not use of it is left out there, function by function.
function(velta_static_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PRIVATE velta_settings)
  target_compile_options(${name} PRIVATE -ffunction-sections -fdata-sections)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# velta_program(NAME source...): an executable, left at the top of the build folder.
function(velta_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE velta_settings)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
endfunction()

# velta_test(NAME source...): a GoogleTest program; each of its cases becomes a CTest test in a process of its own.
function(velta_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES;SOURCES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE velta_settings GTest::gmock GTest::gtest_main ${arg_LIBRARIES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 180)
endfunction()
