# What goes wrong while a foreign file is read, and the way of such a file through the program.
ry_test(foreign LIBS rycore_io ry_evaluator ry_test_core)
# The reading program with another reader in it.
add_executable(bad_foreign_reader ${CMAKE_CURRENT_LIST_DIR}/reader/TestReader.cpp)
target_link_libraries(bad_foreign_reader PRIVATE ry_compile_options ry_foreign_child)
set_target_properties(bad_foreign_reader PROPERTIES OUTPUT_NAME testreader
                      RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/testreaders)
add_dependencies(tst_foreign ryhost bad_foreign_reader)
# It starts the program itself, with Qt's platform plug-ins, and looks at how that ends.
set_property(TEST tst_foreign APPEND PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)
