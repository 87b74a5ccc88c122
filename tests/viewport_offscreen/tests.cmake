ry_test(viewport_offscreen OFFSCREEN LIBS rycore
        SOURCES ${CMAKE_SOURCE_DIR}/tests/viewport/ViewportTestScene.cpp ${CMAKE_SOURCE_DIR}/tests/viewport/ViewportTestScene.h)
