# Structural actions, their dialogs and the operations behind them, with the scene of the tool's tests.
if(TARGET ry_jointtools)
  ry_test(tool_actions OFFSCREEN LIBS ry_jointtools rycore
          SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.cpp ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.h)
endif()
