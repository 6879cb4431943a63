# Its hash functions tell what a log-in must have sent; it comes with libmicrohttpd's development files.
pkg_check_modules(gnutls REQUIRED IMPORTED_TARGET gnutls)
velta_test(test_netutils
  SOURCES unit/platform/netutils_test.cpp unit/platform/scripted_server.cpp
  LIBRARIES velta::netutils PkgConfig::gnutls)
