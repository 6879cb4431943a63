velta_test(test_netutils
  SOURCES unit/platform/netutils_test.cpp unit/platform/scripted_server.cpp
  LIBRARIES velta::netutils)
