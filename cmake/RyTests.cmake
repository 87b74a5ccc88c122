# Real characters to test with; tests that want one skip with a message where there are none.
if(DEFINED ENV{RY_MODELS})
  set(models $ENV{RY_MODELS})
else()
  set(models ${CMAKE_SOURCE_DIR}/../shared/models)
endif()
cmake_path(NORMAL_PATH models)
set(RY_MODELS_PATH ${models} CACHE PATH "Folder of the characters that some tests open")

# ry_test(FOLDER [LIBS library...] [GL] [OFFSCREEN]): every tst_*.cpp of tests/FOLDER becomes one program tst_FOLDER.
#   GL         the program needs an X server and gets one of its own
#   OFFSCREEN  the program needs a QApplication but no display
function(ry_test folder)
  cmake_parse_arguments(ARG "GL;OFFSCREEN" "TIMEOUT" "LIBS;SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/tests/${folder}/*.h)
  if(NOT sources)
    return()
  endif()
  string(REPLACE "/" "_" program tst_${folder})
  add_executable(${program} ${sources} ${ARG_SOURCES})
  target_include_directories(${program} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/src)
  target_compile_definitions(${program} PRIVATE
    RY_SOURCE_DIR="${CMAKE_SOURCE_DIR}" RY_BINARY_DIR="${CMAKE_BINARY_DIR}")
  target_link_libraries(${program} PRIVATE ry_compile_options ry_test_support Qt5::Test ${ARG_LIBS})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 600)
  endif()
  if(ARG_GL)
    target_link_libraries(${program} PRIVATE ry_test_widgets)
    add_test(NAME ${program} COMMAND ${CMAKE_SOURCE_DIR}/tests/support/with_display $<TARGET_FILE:${program}>)
  elseif(ARG_OFFSCREEN)
    target_link_libraries(${program} PRIVATE ry_test_widgets)
    add_test(NAME ${program} COMMAND $<TARGET_FILE:${program}>)
    set_property(TEST ${program} APPEND PROPERTY ENVIRONMENT QT_QPA_PLATFORM=offscreen)
  else()
    add_test(NAME ${program} COMMAND $<TARGET_FILE:${program}>)
  endif()
  if(ARG_GL OR ARG_OFFSCREEN)
    # Drivers and Qt's platform plug-ins leak, and are gone from memory when the leak check would name them.
    set_property(TEST ${program} APPEND PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)
  endif()
  set_property(TEST ${program} APPEND PROPERTY ENVIRONMENT
    RY_MODELS=${RY_MODELS_PATH}
    LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp)
  set_tests_properties(${program} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
