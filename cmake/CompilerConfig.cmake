# One place for what every target is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

find_program(RY_CCACHE ccache)
if(RY_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${RY_CCACHE})
endif()

add_library(ry_compile_options INTERFACE)
target_compile_options(ry_compile_options INTERFACE -Wall -Wextra -Wshadow=local -Wnon-virtual-dtor -Woverloaded-virtual)
if(RY_WERROR)
  # GCC 12 takes the header of Qt's and the library's strings for the whole of their memory.
  target_compile_options(ry_compile_options INTERFACE -Werror -Wno-error=stringop-overflow -Wno-error=restrict)
endif()
if(RY_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
  # With the sanitizers' checks in between, GCC 12 loses sight of what initialises a variable.
  target_compile_options(ry_compile_options INTERFACE -Wno-maybe-uninitialized)
endif()
