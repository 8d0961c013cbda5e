# What `cmake --install` lays out: the framework for other projects, which find it as the CMake
# package AutoRun (Docs/Framework.md), and the launcher. The component DiscMaker is apart from that: what
# somebody gets who makes discs.
include(CMakePackageConfigHelpers)

set(package_dir lib/cmake/AutoRun)
set(where RUNTIME DESTINATION bin ARCHIVE DESTINATION lib INCLUDES DESTINATION include)
# A build of the framework alone, for another configuration, may be installed into the same folder.
install(TARGETS CU CUI EXPORT AutoRunFramework ${where})
install(EXPORT AutoRunFramework NAMESPACE AutoRun:: DESTINATION ${package_dir})
if(AUTORUN_LAUNCHER)
  target_compile_definitions(AutoRun INTERFACE ${autorun_system})
  install(TARGETS AutoRun EXPORT AutoRunLauncher ${where})
  install(FILES $<TARGET_FILE_DIR:AutoRun>/AutoRun.map DESTINATION bin)
  install(EXPORT AutoRunLauncher NAMESPACE AutoRun:: DESTINATION ${package_dir})
endif()
install(DIRECTORY CU/Include/CU CUI/Include/CUI DESTINATION include)
# Another minor version may have other classes, and with them other decorated names. What is wrong with
# a 64-bit compiler the package says itself.
write_basic_package_version_file(AutoRunConfigVersion.cmake
  COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(FILES cmake/AutoRunConfig.cmake cmake/CheckCompiler.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/AutoRunConfigVersion.cmake DESTINATION ${package_dir})

# The sources, for those who build them with their own project.
install(DIRECTORY Base CU CUI DESTINATION src)
install(FILES CMakeLists.txt DESTINATION src)
install(FILES cmake/CheckCompiler.cmake cmake/Options.cmake DESTINATION src/cmake)

# What debuggers show of its classes.
install(DIRECTORY Tools/debugging/ DESTINATION share/AutoRun)

set(doc_dir share/doc/AutoRun)
install(FILES Docs/Framework.md DESTINATION ${doc_dir} RENAME README.md)
install(FILES CHANGELOG.md DESTINATION ${doc_dir})
file(GLOB doc_pictures Docs/*.png)
list(FILTER doc_pictures EXCLUDE REGEX "/(launcher|disc-maker)\\.png$")
install(FILES ${doc_pictures} DESTINATION ${doc_dir})
install(DIRECTORY Samples/Hello Samples/Frame Samples/Tutorial Samples/Viewer Samples/Editor Samples/Effects
  Samples/Prober DESTINATION ${doc_dir}
  PATTERN "*.py" EXCLUDE)

if(AUTORUN_MANUAL)
  set(manual ${CMAKE_BINARY_DIR}/manual)
  install(CODE "execute_process(
    COMMAND \"${AutoRun_SOURCE_DIR}/Tools/make-manual\" \"${manual}\" COMMAND_ERROR_IS_FATAL ANY)")
  install(DIRECTORY ${manual}/html/ DESTINATION ${doc_dir}/manual)
endif()

if(AUTORUN_LAUNCHER)
  set(maker_options COMPONENT DiscMaker EXCLUDE_FROM_ALL)
  install(PROGRAMS $<TARGET_FILE:DiscMaker> $<TARGET_FILE:AutoRun> DESTINATION . ${maker_options})
  install(DIRECTORY DiscMaker/Help DESTINATION . ${maker_options})
  install(FILES Docs/launcher.png DESTINATION Help ${maker_options})
  install(DIRECTORY AutoRun/Skin/ DESTINATION Skins/Fennick ${maker_options} PATTERN "*.py" EXCLUDE)
  install(DIRECTORY Disc/Skins/ DESTINATION Skins ${maker_options} PATTERN "*.py" EXCLUDE)
endif()
