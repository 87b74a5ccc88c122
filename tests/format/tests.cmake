find_program(RY_PYTHON python3 REQUIRED)
add_test(NAME format COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/check_format.py ${CMAKE_SOURCE_DIR})
add_test(NAME format_planted COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_check_format.py)
