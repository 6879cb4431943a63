# The built library keeps the contract, and libraries that were broken on purpose do not: with just these findings.
function(velta_check_test name library)
  add_test(NAME check/${name} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check/findings.sh
    $<TARGET_FILE:velta-check> $<TARGET_FILE:${library}> ${ARGN})
  set_tests_properties(check/${name} PROPERTIES TIMEOUT 600)
endfunction()

function(velta_broken_library variant)
  add_library(veltadev_broken_${variant} MODULE check/broken.cpp)
  string(TOUPPER ${variant} number)
  target_compile_definitions(veltadev_broken_${variant} PRIVATE
    BROKEN=${number} REAL_LIBRARY="$<TARGET_FILE:veltadev>")
  target_include_directories(veltadev_broken_${variant} PRIVATE ${CMAKE_SOURCE_DIR}/include)
  target_link_libraries(veltadev_broken_${variant} PRIVATE velta_settings ${CMAKE_DL_LIBS})
  add_dependencies(veltadev_broken_${variant} veltadev)
  velta_check_test(${variant} veltadev_broken_${variant} ${ARGN})
endfunction()

velta_check_test(library veltadev)
velta_broken_library(result
  "exports.frame-entries FAIL" "exports.record-v3 FAIL" "registration.no-record-before FAIL"
  "lifecycle.query-unknown FAIL" "lifecycle.null-places FAIL")
velta_broken_library(record "records.access-event FAIL" "records.generic-alarm FAIL"
  "records.cut-texts FAIL" "records.pictures FAIL")
velta_broken_library(crash "lifecycle.query-unknown CRASHED" "lifecycle.null-places CRASHED")
velta_broken_library(hang "lifecycle.query-unknown HUNG" "lifecycle.null-places HUNG")
set_tests_properties(check/hang PROPERTIES ENVIRONMENT "TIME_LIMIT=20;ONLY=lifecycle")
