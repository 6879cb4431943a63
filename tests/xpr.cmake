velta_test(test_xpr
  SOURCES unit/platform/adapter_test.cpp unit/platform/sync_test.cpp unit/platform/text_test.cpp
          unit/platform/thread_test.cpp unit/platform/timer_test.cpp
  LIBRARIES velta::xpr)
