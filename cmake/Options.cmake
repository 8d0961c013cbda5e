# Compiler and linker settings as targets: `autorun_warnings` for all our code, `autorun_product`
# for what is shipped, `autorun_runtime` for every program that runs on 32-bit Windows. Without
# AUTORUN_AS_SHIPPED the options of whoever builds decide on warnings, size, speed and debugging.

add_library(autorun_warnings INTERFACE)
if(AUTORUN_AS_SHIPPED)
  target_compile_options(autorun_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror>)
endif()
# Win32 hands out functions and messages through types that only a cast can turn.
target_compile_options(autorun_warnings INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-cast-function-type>)

# The records have the sizes that Windows 95 and NT 4 know (NONCLIENTMETRICS 340 bytes, ...).
set(autorun_system WINVER=0x0400 _WIN32_WINNT=0x0400)
add_library(autorun_platform INTERFACE)
target_compile_definitions(autorun_platform INTERFACE ${autorun_system})
if(AUTORUN_CHECKED)
  target_compile_options(autorun_platform INTERFACE
    # The system's controls hand out packed records, such as NMTVKEYDOWN, at any address.
    $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined -fno-sanitize=alignment -fsanitize-undefined-trap-on-error>)
endif()

# Frame pointers cost below 1 % of size and let a stack be walked on machines without debug
# information; unwind tables would not.
add_library(autorun_product INTERFACE)
target_link_libraries(autorun_product INTERFACE autorun_warnings autorun_platform autorun_base)
# The system runtime's printf and scanf: the compiler's own bring 60 KiB along.
target_compile_definitions(autorun_product INTERFACE __USE_MINGW_ANSI_STDIO=0)
target_compile_options(autorun_product INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-asynchronous-unwind-tables -fno-omit-frame-pointer>
  $<$<COMPILE_LANGUAGE:CXX>:-ffunction-sections -fdata-sections>)
if(AUTORUN_AS_SHIPPED)
  target_compile_options(autorun_product INTERFACE
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CONFIG:Release>>:-Oz>
    # Win32 aligns the stack to 4 bytes, which is enough here; clang knows. Without the limit GCC puts
    # functions into others that get larger by it.
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<CONFIG:Release>>:-mpreferred-stack-boundary=2;-finline-limit=8>
    # Arguments are pushed, which takes half of the code that storing them does, if no function has to
    # reach for the pages of its stack one by one: none may need a page. autorun_large_frames names those
    # that do.
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<CONFIG:Release>>:-mno-stack-arg-probe;-mno-accumulate-outgoing-args>
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<CONFIG:Release>>:-Wframe-larger-than=3584;-Walloca>
    # The same bytes wherever the sources stand.
    $<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${AutoRun_SOURCE_DIR}=.>)
endif()

# Programs on the framework: as their users would compile them, without what the product does for its
# size.
add_library(autorun_program INTERFACE)
target_link_libraries(autorun_program INTERFACE autorun_warnings autorun_platform autorun_base)
target_compile_definitions(autorun_program INTERFACE __USE_MINGW_ANSI_STDIO=0)
target_compile_options(autorun_program INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-asynchronous-unwind-tables>
  $<$<COMPILE_LANGUAGE:CXX>:-ffunction-sections -fdata-sections>
  $<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${AutoRun_SOURCE_DIR}=.>)

# autorun_hot(NAME...): sources of the current folder where speed counts more than size.
function(autorun_hot)
  if(NOT AUTORUN_AS_SHIPPED)
    return()
  endif()
  # Those that -O2 has without the limit above.
  set(own_limits --param=max-inline-insns-single=70 --param=max-inline-insns-auto=15)
  list(TRANSFORM ARGN PREPEND Src/ OUTPUT_VARIABLE hot)
  list(TRANSFORM hot APPEND .cpp)
  set_source_files_properties(${hot} PROPERTIES COMPILE_OPTIONS
    "$<$<CONFIG:Release>:-O2;$<$<CXX_COMPILER_ID:GNU>:${own_limits}>>")
endfunction()

# autorun_large_frames(NAME...): sources of the current folder with functions whose variables take a page
# of the stack or more.
function(autorun_large_frames)
  if(NOT AUTORUN_AS_SHIPPED)
    return()
  endif()
  list(TRANSFORM ARGN PREPEND Src/ OUTPUT_VARIABLE large)
  list(TRANSFORM large APPEND .cpp)
  set(options -mstack-arg-probe -maccumulate-outgoing-args -Wno-frame-larger-than)
  set_property(SOURCE ${large} APPEND PROPERTY COMPILE_OPTIONS
    "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:${options}>")
endfunction()

# One file that needs the system's libraries only; address randomisation and no execution of data;
# runs from Windows 95 and NT 4 on; the same input gives the same bytes.
add_library(autorun_runtime INTERFACE)
target_link_options(autorun_runtime INTERFACE
  -static -static-libgcc -static-libstdc++ -Wl,--gc-sections
  -Wl,--dynamicbase,--nxcompat,--no-insert-timestamp
  -Wl,--major-subsystem-version=4,--minor-subsystem-version=0
  -Wl,--major-os-version=4,--minor-os-version=0)
