# A pose that becomes the rest: the operation, its action, and files with clips and morphs that were baked.
if(TARGET ry_jointtools)
  ry_test(bake OFFSCREEN LIBS ry_jointtools rycore ry_evaluator SOURCES
    ${ry_clip_test_sources}
    ${CMAKE_SOURCE_DIR}/tests/morphs/MorphFile.cpp
    ${CMAKE_SOURCE_DIR}/tests/tool/RyToolScene.cpp
    ${CMAKE_SOURCE_DIR}/tests/tool/RyToolScene.h
    ${CMAKE_SOURCE_DIR}/tests/tool_actions/RySkinnedScene.cpp)
  target_include_directories(tst_bake PRIVATE ${CMAKE_SOURCE_DIR}/tests/clips ${CMAKE_SOURCE_DIR}/tests/io
                             ${CMAKE_SOURCE_DIR}/tests/morphs ${CMAKE_SOURCE_DIR}/tests/tool
                             ${CMAKE_SOURCE_DIR}/tests/tool_actions)
endif()
