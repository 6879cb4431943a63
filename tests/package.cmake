# The C++ face of the contract, the examples, and the packages, which only the release build makes.
velta_test(host_header_tests SOURCES package/host_hpp_test.cpp LIBRARIES velta_sim_lib VeltaDev::headers ${CMAKE_DL_LIBS})
target_compile_definitions(host_header_tests PRIVATE VELTADEV_PATH="$<TARGET_FILE:veltadev>")
add_dependencies(host_header_tests veltadev)
foreach(example velta-example-c velta-example-cpp)
  add_test(NAME ${example} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/package/run_example.sh
    $<TARGET_FILE:${example}> $<TARGET_FILE:veltadev> $<TARGET_FILE:velta-sim>)
  set_tests_properties(${example} PROPERTIES TIMEOUT 300)
endforeach()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND VELTA_BUILD_HOST)
  add_test(NAME packages COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/package/check_packages.sh
    ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR})
  set_tests_properties(packages PROPERTIES TIMEOUT 600)
endif()
