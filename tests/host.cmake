velta_test(test_host
  SOURCES unit/host/answer_test.cpp unit/host/csv_test.cpp unit/host/device_address_test.cpp
          unit/host/device_clock_test.cpp unit/host/event_text_test.cpp unit/host/listing_test.cpp
          unit/host/person_row_test.cpp unit/host/picture_test.cpp
  LIBRARIES velta_host_core)
