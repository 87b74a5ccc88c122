ry_test(parametric_files LIBS rycore_io ry_evaluator ry_test_core SOURCES
  ${CMAKE_SOURCE_DIR}/tests/io/CharacterScene.cpp
  ${CMAKE_SOURCE_DIR}/tests/io/FigureSketch.cpp
  ${CMAKE_SOURCE_DIR}/tests/merging/FileMutator.cpp)
target_include_directories(tst_parametric_files PRIVATE ${CMAKE_SOURCE_DIR}/tests/io ${CMAKE_SOURCE_DIR}/tests/merging)
