velta_test(sim_tests
  SOURCES unit/sim/client.cpp unit/sim/control_test.cpp unit/sim/passage_test.cpp unit/sim/people_test.cpp
          unit/sim/system_test.cpp unit/sim/traffic_test.cpp
  LIBRARIES velta_sim_lib CURL::libcurl PkgConfig::jsoncpp)
