velta_test(sim_tests
  SOURCES unit/sim/client.cpp unit/sim/control_test.cpp unit/sim/fault_test.cpp unit/sim/log_in_test.cpp
          unit/sim/resource_test.cpp unit/sim/stream_test.cpp unit/sim/system_test.cpp
  LIBRARIES velta_sim_lib CURL::libcurl PkgConfig::jsoncpp)
