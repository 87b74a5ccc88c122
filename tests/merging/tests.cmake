ry_test(merging LIBS rycore_io ry_evaluator ry_test_core SOURCES
  ${CMAKE_SOURCE_DIR}/tests/io/CharacterScene.cpp
  ${CMAKE_SOURCE_DIR}/tests/io/FigureSketch.cpp
  ${CMAKE_SOURCE_DIR}/tests/io/RigEdits.cpp)
target_include_directories(tst_merging PRIVATE ${CMAKE_SOURCE_DIR}/tests/io)
