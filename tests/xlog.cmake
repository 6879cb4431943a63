velta_test(test_xlog SOURCES unit/platform/xlog_test.cpp LIBRARIES velta::xlog)
