# The reference of the public headers: every public name has a comment, and what comments refer to is there.
find_program(KESTREL_DOXYGEN doxygen)
if(KESTREL_DOXYGEN)
  add_test(NAME Documentation.leavesNoPublicNameOut
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/reference ${CMAKE_CURRENT_BINARY_DIR}/reference)
else()
  add_test(NAME Documentation.leavesNoPublicNameOut COMMAND ${CMAKE_COMMAND} -E echo "doxygen is not installed.")
  set_tests_properties(Documentation.leavesNoPublicNameOut PROPERTIES SKIP_REGULAR_EXPRESSION "is not installed")
endif()
