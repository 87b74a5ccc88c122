# Mirroring of joints: the operation, its dialog and its action, with the scene of the tool's tests.
if(TARGET ry_jointtools)
  ry_test(mirroring OFFSCREEN LIBS ry_jointtools rycore
          SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.cpp ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.h)
endif()
