# Unit tests of src/, by folder.
velta_test(frame_tests
  SOURCES unit/DevPlus/frame_test.cpp ${CMAKE_SOURCE_DIR}/src/DevPlus/DevPlus.cpp
  LIBRARIES veltadev_core)
velta_test(facade_tests
  SOURCES unit/DevPlus/facade_test.cpp
  LIBRARIES veltadev_core)
velta_test(manager_tests
  SOURCES unit/manager/registry_test.cpp unit/manager/rwlock_test.cpp unit/manager/local_network_test.cpp
  LIBRARIES veltadev_core)
velta_test(device_tests
  SOURCES
    unit/device/alert_stream_parser_test.cpp
    unit/device/answer_buffer_test.cpp
    unit/device/connection_url_test.cpp
    unit/device/event_records_test.cpp
  LIBRARIES veltadev_core)
velta_test(gateway_tests
  SOURCES
    unit/gateway/input_guard_test.cpp
    unit/gateway/response_status_test.cpp
    unit/gateway/url_test.cpp
    unit/gateway/xml_test.cpp
  LIBRARIES veltadev_core)
velta_test(translate_tests
  SOURCES
    unit/translate/access_test.cpp
    unit/translate/device_info_test.cpp
    unit/translate/local_time_test.cpp
    unit/translate/network_test.cpp
  LIBRARIES veltadev_core velta_sim_lib)
