ry_test(host GL LIBS ry_ryhost ry_pointer_driver rycore ry_evaluator SOURCES
  ${CMAKE_SOURCE_DIR}/tests/io/FigureSketch.cpp)
add_dependencies(tst_host RyJointTools)
