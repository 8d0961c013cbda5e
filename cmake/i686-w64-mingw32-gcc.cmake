# GCC with the win32 thread model: the programs need no thread library beside the system's.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(triple i686-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-win32)
set(CMAKE_CXX_COMPILER ${triple}-g++-win32)
set(CMAKE_RC_COMPILER ${triple}-windres)
include(${CMAKE_CURRENT_LIST_DIR}/i686-w64-mingw32-common.cmake)
