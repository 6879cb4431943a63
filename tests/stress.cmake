# What a host may do in any order, for a long time, and under want of memory, threads and descriptors.
add_executable(velta-stress
  stress/actions.cpp stress/ledger.cpp stress/round.cpp stress/site.cpp stress/stress.cpp)
target_link_libraries(velta-stress PRIVATE velta_settings system_support CLI11::CLI11)
set_target_properties(velta-stress PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_test(NAME stress COMMAND velta-stress --seconds 5 --events 100)
set_tests_properties(stress PROPERTIES TIMEOUT 600)

velta_test(lifetime_tests SOURCES stress/lifetime_test.cpp stress/interposed.cpp LIBRARIES system_support)

# The library as a part of the program, so that its memory and its timers are in the hands of the test.
velta_test(allocation_tests
  SOURCES
    stress/allocation_test.cpp stress/refusal.cpp
    ${CMAKE_SOURCE_DIR}/src/DevPlus/DevPlus.cpp ${CMAKE_SOURCE_DIR}/src/DevPlus/VeltaDev.cpp
  LIBRARIES veltadev_core velta_sim_lib ${CMAKE_DL_LIBS})
target_link_options(allocation_tests PRIVATE
  -Wl,--wrap=XPR_Thread_Create -Wl,--wrap=XPR_SetTimer -Wl,--wrap=XPR_Sleep)

add_executable(velta-soak stress/ledger.cpp stress/soak.cpp)
target_link_libraries(velta-soak PRIVATE velta_settings system_support CLI11::CLI11)
set_target_properties(velta-soak PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_test(NAME soak COMMAND velta-soak --sessions 10 --seconds 20 --events 200)
set_tests_properties(soak PROPERTIES TIMEOUT 600)
