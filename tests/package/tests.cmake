# What a person gets who installs the program: packed, unpacked and run. What the sanitizers need is no part of a package.
if(NOT RY_SANITIZE)
  add_test(NAME package_deb COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_package.py ${CMAKE_BINARY_DIR}
                                    ${CMAKE_CPACK_COMMAND})
  set_property(TEST package_deb PROPERTY TIMEOUT 600)
endif()
add_test(NAME package_man_page COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_man_page.py)
