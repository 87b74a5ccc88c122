# Whole edits with the built plug-in on characters from files.
if(TARGET RyJointTools)
  ry_test(editing OFFSCREEN LIBS rycore ry_evaluator
          SOURCES ${CMAKE_CURRENT_LIST_DIR}/../io/CharacterScene.cpp TIMEOUT 2400)
  target_compile_definitions(tst_editing PRIVATE RY_PLUGIN_FILE="$<TARGET_FILE:RyJointTools>")
  add_dependencies(tst_editing RyJointTools ryhost ryforeign)
  # Thousands of edits in one test function take their time under the sanitizers.
  set_property(TEST tst_editing APPEND PROPERTY ENVIRONMENT QTEST_FUNCTION_TIMEOUT=2000000)
endif()
