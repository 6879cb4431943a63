# The panel of the simulated device: its server, and its page in a browser.
velta_test(panel_tests
  SOURCES unit/sim/client.cpp unit/sim/panel_test.cpp
  LIBRARIES velta_sim_lib CURL::libcurl)

if(NOT VELTA_SANITIZE)
  add_test(NAME panel_in_browser COMMAND /usr/bin/python3 -B ${CMAKE_CURRENT_SOURCE_DIR}/panel/panel_test.py
    $<TARGET_FILE:velta-sim>)
  set_tests_properties(panel_in_browser PROPERTIES TIMEOUT 300)
endif()
