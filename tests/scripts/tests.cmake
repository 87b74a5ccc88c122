# Mistakes in the scripts are found before a fresh machine finds them.
find_program(RY_PYTHON python3 REQUIRED)
add_test(NAME scripts_summarize COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_summarize_tests.py)
add_test(NAME scripts_install COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_install_dependencies.py)
add_test(NAME scripts_make_hand COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_make_hand.py)
foreach(script run test .ci/run scripts/build)
  string(MAKE_C_IDENTIFIER ${script} name)
  add_test(NAME scripts_parse_${name} COMMAND bash -n ${CMAKE_SOURCE_DIR}/${script})
endforeach()
