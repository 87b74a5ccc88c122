# What goes wrong while a foreign file is read, and the way of such a file through the program.
ry_test(foreign LIBS rycore_io ry_evaluator ry_test_core)
add_library(bad_foreign_reader MODULE ${CMAKE_CURRENT_LIST_DIR}/reader/TestReader.cpp)
target_include_directories(bad_foreign_reader PRIVATE ${CMAKE_SOURCE_DIR}/src)
target_link_libraries(bad_foreign_reader PRIVATE ry_compile_options Qt5::Core)
set_target_properties(bad_foreign_reader PROPERTIES PREFIX "" OUTPUT_NAME testreader
                      LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/testreaders)
add_dependencies(tst_foreign ryhost bad_foreign_reader)
# It starts the program itself, with Qt's platform plug-ins, and looks at how that ends.
set_property(TEST tst_foreign APPEND PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)
if(TARGET ryforeign)
  add_dependencies(tst_foreign ryforeign)
endif()
