# The built library, loaded from outside, with simulated devices in the same process.
add_library(system_support STATIC system/plugin.cpp)
target_include_directories(system_support PUBLIC system ${CMAKE_SOURCE_DIR}/include)
target_compile_definitions(system_support PRIVATE VELTADEV_PATH="$<TARGET_FILE:veltadev>")
target_link_libraries(system_support PRIVATE velta_settings PUBLIC
  velta_sim_lib PkgConfig::jsoncpp PkgConfig::microhttpd ${CMAKE_DL_LIBS})
add_dependencies(system_support veltadev)

velta_test(access_tests
  SOURCES system/access_biometrics_test.cpp system/access_persons_test.cpp system/access_site_test.cpp
          system/system_resources_test.cpp
  LIBRARIES system_support)
velta_test(gateway_system_tests SOURCES system/gateway_test.cpp LIBRARIES system_support)
velta_test(site_tests SOURCES system/site_test.cpp LIBRARIES system_support)
velta_test(hostile_tests SOURCES system/hostile_test.cpp LIBRARIES system_support)

# One process, so that all sessions wait for the same online checks.
add_executable(session_tests system/session_test.cpp)
target_link_libraries(session_tests PRIVATE velta_settings system_support GTest::gmock GTest::gtest_main)
set_target_properties(session_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_test(NAME sessions COMMAND session_tests)
set_tests_properties(sessions PROPERTIES TIMEOUT 600)

# The names that the library shows, compared with the list it is linked with.
add_test(NAME exports COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/system/check_exports.sh
  $<TARGET_FILE:veltadev> ${CMAKE_SOURCE_DIR}/src/exports.map)

set(built $<TARGET_FILE:veltadev> $<TARGET_FILE:velta-sim>)
if(VELTA_BUILD_HOST)
  list(APPEND built $<TARGET_FILE:velta-host> $<TARGET_FILE:velta-check>)
endif()
add_test(NAME hardening COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/system/check_hardening.sh
  $<IF:$<CONFIG:Release>,yes,no> ${built})
