# Part of the package, too.

# autorun_find_compiler_problem(RESULT): why the project's compiler cannot use the framework, and what
# to do; empty if it can, or if there is none.
function(autorun_find_compiler_problem result)
  if(NOT CMAKE_SIZEOF_VOID_P)
    set(problem "")
  elseif(NOT WIN32)
    set(problem "makes programs for ${CMAKE_SYSTEM_NAME}")
  elseif(NOT MINGW)
    set(problem "is Visual Studio's, or one for its libraries")
  elseif(NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(problem "makes 64-bit programs")
  endif()
  if(problem)
    string(CONCAT problem
      "AutoRun is for 32-bit Windows programs made by GCC or clang with mingw-w64, and this compiler "
      "${problem}. Take one of mingw-w64 for i686, on Debian that of g++-mingw-w64-i686-win32, and "
      "configure in a new folder: cmake -B build32 -D CMAKE_SYSTEM_NAME=Windows "
      "-D CMAKE_CXX_COMPILER=i686-w64-mingw32-g++-win32")
  endif()
  set(${result} "${problem}" PARENT_SCOPE)
endfunction()
