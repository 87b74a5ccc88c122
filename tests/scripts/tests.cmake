# Mistakes in the scripts are found before a fresh machine finds them.
find_program(RY_PYTHON python3 REQUIRED)
add_test(NAME scripts_summarize COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_summarize_tests.py)
add_test(NAME scripts_install COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_install_dependencies.py)
add_test(NAME scripts_make_hand COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_make_hand.py)
add_test(NAME scripts_try_changes COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_try_changes.py)
# The sessions that the guide and the walk-throughs tell of go as they tell them. Fonts and drivers leak: see the other programs with drivers in them.
add_test(NAME scripts_demo_session COMMAND ${CMAKE_SOURCE_DIR}/scripts/demo_session ${CMAKE_BINARY_DIR}
                                           ${CMAKE_CURRENT_BINARY_DIR}/demo_session)
set_property(TEST scripts_demo_session PROPERTY TIMEOUT 300)
set_property(TEST scripts_demo_session PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=0
             DEMO_FBX=${RY_MODELS_PATH}/foreign/mh_clip_morph.fbx)
foreach(script run test .ci/run scripts/build tools/try_package)
  string(MAKE_C_IDENTIFIER ${script} name)
  add_test(NAME scripts_parse_${name} COMMAND bash -n ${CMAKE_SOURCE_DIR}/${script})
endforeach()
