ry_test(player LIBS rycore_io ry_evaluator ry_test_core SOURCES
  ${ry_clip_test_sources}
  ${CMAKE_SOURCE_DIR}/tests/clips/ClipEdits.cpp
  ${CMAKE_SOURCE_DIR}/tests/clips/ClipSketch.cpp
  ${CMAKE_SOURCE_DIR}/tests/io/RigEdits.cpp
  ${CMAKE_SOURCE_DIR}/tests/merging/MergedScene.cpp)
target_include_directories(tst_player PRIVATE ${CMAKE_SOURCE_DIR}/tests/clips ${CMAKE_SOURCE_DIR}/tests/io
                           ${CMAKE_SOURCE_DIR}/tests/merging)
