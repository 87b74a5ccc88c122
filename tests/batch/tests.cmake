# Runs the program itself, as a person at a shell would, without a display.
ry_test(batch LIBS rycore_io ry_evaluator ry_test_core SOURCES ${CMAKE_SOURCE_DIR}/tests/io/FigureSketch.cpp)
target_include_directories(tst_batch PRIVATE ${CMAKE_SOURCE_DIR}/tests/io)
# Actions with dialogs of their own.
add_library(tst_batch_dialogs MODULE ${CMAKE_CURRENT_LIST_DIR}/plugin/DialogPlugin.cpp)
target_include_directories(tst_batch_dialogs PRIVATE ${CMAKE_SOURCE_DIR}/src)
target_link_libraries(tst_batch_dialogs PRIVATE ry_compile_options rycore)
set_target_properties(tst_batch_dialogs PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden
                      LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/testplugins_batch)
add_dependencies(tst_batch ryhost RyJointTools tst_batch_dialogs)
# The program draws pictures: see the other programs with drivers in them.
set_property(TEST tst_batch APPEND PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)
