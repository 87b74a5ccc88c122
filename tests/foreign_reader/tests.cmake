# Links the objects of the library that reads foreign formats, which the program itself only loads.
ry_test(foreign_reader LIBS ry_evaluator ry_test_core assimp::assimp rycore SOURCES
  ${CMAKE_SOURCE_DIR}/tests/io/CharacterScene.cpp
  $<TARGET_OBJECTS:ry_foreign>)
target_include_directories(tst_foreign_reader PRIVATE ${CMAKE_SOURCE_DIR}/tests/io)
