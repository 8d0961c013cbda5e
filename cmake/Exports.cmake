# What AutoRun.exe exports: the names that the headers mark with CU_API and CUI_API, without those that
# no program can name, held against the list AutoRun/exports.txt.

find_program(AUTORUN_PYTHON python3 REQUIRED)
set(AUTORUN_EXPORTS_TOOL ${AutoRun_SOURCE_DIR}/Tools/exports.py)
set(AUTORUN_EXPORTS_LIST ${AutoRun_SOURCE_DIR}/AutoRun/exports.txt)

# autorun_note_exports(LIBRARY): LIBRARY is compiled with <LIBRARY>_EXPORTS; what the compiler notes of
# it moves from the library to a file beside it, so that a program linked with the library exports
# nothing.
function(autorun_note_exports library)
  target_compile_definitions(${library} PRIVATE ${library}_EXPORTS)
  set(names ${CMAKE_CURRENT_BINARY_DIR}/${library}.exports)
  add_custom_command(TARGET ${library} POST_BUILD
    COMMAND ${AUTORUN_PYTHON} ${AUTORUN_EXPORTS_TOOL} take $<TARGET_FILE:${library}> ${names}
    BYPRODUCTS ${names}
    VERBATIM)
  # A static library depends on its objects alone.
  get_target_property(sources ${library} SOURCES)
  list(GET sources 0 source)
  set_property(SOURCE ${source} APPEND PROPERTY OBJECT_DEPENDS ${AUTORUN_EXPORTS_TOOL})
  set_property(GLOBAL APPEND PROPERTY AUTORUN_EXPORTS_NAMES ${names})
endfunction()

# autorun_find_hidden_members(): what the headers mark and no program can name goes to the file `hidden`.
function(autorun_find_hidden_members)
  set(tool ${AutoRun_SOURCE_DIR}/Tools/hidden_members.py)
  set(folders ${AutoRun_SOURCE_DIR}/CU/Include ${AutoRun_SOURCE_DIR}/CUI/Include)
  list(TRANSFORM folders APPEND /*.h OUTPUT_VARIABLE patterns)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${patterns})
  set(hidden ${CMAKE_CURRENT_BINARY_DIR}/hidden.txt)
  add_custom_command(OUTPUT ${hidden}
    COMMAND ${AUTORUN_PYTHON} ${tool} ${hidden} ${folders}
    DEPENDS ${tool} ${headers}
    VERBATIM)
  add_custom_target(hidden_members DEPENDS ${hidden})
  set(hidden ${hidden} PARENT_SCOPE)
endfunction()

# autorun_check_exports(): fails, with the names, where the list is not what the libraries have; makes
# what the linker takes of it.
function(autorun_check_exports)
  autorun_find_hidden_members()
  get_property(names GLOBAL PROPERTY AUTORUN_EXPORTS_NAMES)
  set(to ${CMAKE_CURRENT_BINARY_DIR})
  set(files ${to}/keep.rsp ${to}/export.def ${to}/import.def)
  add_custom_command(OUTPUT ${files}
    COMMAND ${AUTORUN_PYTHON} ${AUTORUN_EXPORTS_TOOL} check ${AUTORUN_EXPORTS_LIST} ${to}
      ${hidden} ${names}
    DEPENDS ${AUTORUN_EXPORTS_TOOL} ${AUTORUN_EXPORTS_LIST} ${hidden} ${names}
    VERBATIM)
  add_custom_target(exports DEPENDS ${files})
  set_property(GLOBAL PROPERTY AUTORUN_EXPORTS_FOLDER ${to})
endfunction()

# autorun_export_all(PROGRAM): PROGRAM exports what is on the list.
function(autorun_export_all program)
  get_property(from GLOBAL PROPERTY AUTORUN_EXPORTS_FOLDER)
  target_link_options(${program} PRIVATE @${from}/keep.rsp ${from}/export.def)
  set_property(TARGET ${program} APPEND PROPERTY LINK_DEPENDS ${from}/keep.rsp ${from}/export.def)
  add_dependencies(${program} exports)
endfunction()

# autorun_make_import_library(PROGRAM): targets that link PROGRAM link its import library, which is
# installed as its ARCHIVE artifact.
function(autorun_make_import_library program)
  get_property(from GLOBAL PROPERTY AUTORUN_EXPORTS_FOLDER)
  set_target_properties(${program} PROPERTIES ENABLE_EXPORTS ON)
  target_compile_definitions(${program} INTERFACE CU_IMPORTS CUI_IMPORTS)
  foreach(library CU CUI)
    target_include_directories(${program} INTERFACE
      $<BUILD_INTERFACE:${AutoRun_SOURCE_DIR}/${library}/Include>)
  endforeach()
  add_custom_command(TARGET ${program} POST_BUILD
    COMMAND ${CMAKE_DLLTOOL} --deterministic-libraries --temp-prefix ${program}
      -d ${from}/import.def -l $<TARGET_LINKER_FILE_NAME:${program}>
    # A path in the library's name would be part of its symbols.
    WORKING_DIRECTORY $<TARGET_LINKER_FILE_DIR:${program}>
    VERBATIM)
endfunction()
