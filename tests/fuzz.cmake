# Each fuzz target once with every input of its corpus.
get_property(targets GLOBAL PROPERTY VELTA_FUZZ_TARGETS)
foreach(target ${targets})
  add_test(NAME fuzz/${target} COMMAND fuzz_${target} ${CMAKE_SOURCE_DIR}/fuzz/corpus/${target})
  set_tests_properties(fuzz/${target} PROPERTIES TIMEOUT 300)
endforeach()
