# What find_package(AutoRun) reads.
include(${CMAKE_CURRENT_LIST_DIR}/CheckCompiler.cmake)
autorun_find_compiler_problem(AutoRun_NOT_FOUND_MESSAGE)
if(AutoRun_NOT_FOUND_MESSAGE)
  set(AutoRun_FOUND FALSE)
  return()
endif()
include(${CMAKE_CURRENT_LIST_DIR}/AutoRunFramework.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/AutoRunLauncher.cmake OPTIONAL)
