# Links the objects of the program that reads foreign formats, and starts that program too.
ry_test(foreign_reader LIBS ry_evaluator ry_test_core ry_foreign rycore SOURCES
  ${CMAKE_SOURCE_DIR}/tests/io/CharacterScene.cpp ${CMAKE_SOURCE_DIR}/tests/foreign/ForeignSketch.cpp
  ${CMAKE_SOURCE_DIR}/tests/foreign/FbxSketch.cpp)
target_include_directories(tst_foreign_reader PRIVATE ${CMAKE_SOURCE_DIR}/tests/io)
add_dependencies(tst_foreign_reader ryforeign)
