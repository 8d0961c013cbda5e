# What find_package(AutoRun) reads.
include(${CMAKE_CURRENT_LIST_DIR}/CheckCompiler.cmake)
autorun_find_compiler_problem(AutoRun_NOT_FOUND_MESSAGE)
if(AutoRun_NOT_FOUND_MESSAGE)
  set(AutoRun_FOUND FALSE)
  return()
endif()
include(${CMAKE_CURRENT_LIST_DIR}/AutoRunFramework.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/AutoRunLauncher.cmake OPTIONAL)
# The libraries for debugging are for Debug alone, not for whatever has none of its own.
foreach(configuration RELWITHDEBINFO MINSIZEREL NOCONFIG)
  set_target_properties(AutoRun::CU AutoRun::CUI PROPERTIES
    MAP_IMPORTED_CONFIG_${configuration} "Release;Debug")
endforeach()
