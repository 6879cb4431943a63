# The pages in docs/: their examples, links, listings and pictures are what they say.
velta_test(docs_tests SOURCES docs/examples_test.cpp docs/pages.cpp LIBRARIES system_support velta::pugixml)
target_compile_definitions(docs_tests PRIVATE VELTA_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
target_compile_options(docs_tests PRIVATE
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)  # wrong about <regex> in g++ 12 with sanitizers

add_test(NAME docs_links COMMAND ${CMAKE_SOURCE_DIR}/docs/site/pages.py check)
add_test(NAME docs_pictures COMMAND ${CMAKE_SOURCE_DIR}/docs/pictures/event_record.py --check)
add_test(NAME docs_listing COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/docs/check_listing.sh
  ${CMAKE_C_COMPILER} ${CMAKE_SOURCE_DIR})
