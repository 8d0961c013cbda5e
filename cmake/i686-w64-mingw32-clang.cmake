# clang for the same target; the headers, the libraries and the linker are those of the cross GCC.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(triple i686-w64-mingw32)
set(gcc ${triple}-g++-win32)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET i686-w64-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET i686-w64-windows-gnu)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_AR ${triple}-ar)
set(CMAKE_DLLTOOL ${triple}-dlltool)
set(CMAKE_RANLIB ${triple}-ranlib)

execute_process(
  COMMAND ${gcc} -print-file-name=include
  OUTPUT_VARIABLE gcc_include OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
    ${gcc_include}/c++ ${gcc_include}/c++/${triple} ${gcc_include}/c++/backward)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
# Read after CMake's own rules for the platform, which name the compiler as the linker.
set(CMAKE_USER_MAKE_RULES_OVERRIDE ${CMAKE_CURRENT_LIST_DIR}/link-with-gcc.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/i686-w64-mingw32-common.cmake)
