# What the reference host keeps of its exchanges, and the simulated device that plays it back.
velta_test(trace_unit_tests SOURCES unit/host/trace_test.cpp LIBRARIES velta_host_core)
velta_test(replay_tests SOURCES unit/sim/client.cpp unit/sim/replay_test.cpp
  LIBRARIES velta_sim_lib CURL::libcurl PkgConfig::jsoncpp)

velta_test(trace_tests SOURCES system/trace_test.cpp LIBRARIES PkgConfig::jsoncpp)
target_compile_definitions(trace_tests PRIVATE
  VELTA_HOST="$<TARGET_FILE:velta-host>" VELTA_SIM="$<TARGET_FILE:velta-sim>")
add_dependencies(trace_tests velta-host velta-sim veltadev)
