ry_test(host GL LIBS ry_ryhost ry_pointer_driver rycore ry_evaluator SOURCES
  ${CMAKE_SOURCE_DIR}/tests/io/FigureSketch.cpp)
# Somebody who looks on while the program itself starts.
add_library(tst_host_start MODULE ${CMAKE_CURRENT_LIST_DIR}/plugin/StartPlugin.cpp)
target_include_directories(tst_host_start PRIVATE ${CMAKE_SOURCE_DIR}/src)
target_link_libraries(tst_host_start PRIVATE ry_compile_options rycore)
set_target_properties(tst_host_start PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden
                      LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/testplugins_host)
add_dependencies(tst_host ryhost RyJointTools tst_host_start)
