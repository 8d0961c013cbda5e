# clang does not find the cross GCC's start-up objects and libraries; the GCC driver does.
foreach(lang C CXX)
  set(CMAKE_${lang}_LINK_EXECUTABLE
      "${CMAKE_CURRENT_LIST_DIR}/link-quietly i686-w64-mingw32-g++-win32 <CMAKE_${lang}_LINK_FLAGS> <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES>")
  set(CMAKE_${lang}_CREATE_SHARED_LIBRARY
      "i686-w64-mingw32-g++-win32 -shared <LINK_FLAGS> <OBJECTS> -o <TARGET> -Wl,--out-implib,<TARGET_IMPLIB> <LINK_LIBRARIES>")
  set(CMAKE_${lang}_CREATE_SHARED_MODULE
      "i686-w64-mingw32-g++-win32 -shared <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES>")
endforeach()
