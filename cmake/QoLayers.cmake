# A layer is a folder with include/<layer>/ and src/. It becomes two targets:
#
#   <layer>_api   what others may include: this layer's headers and those of the layers below it, nothing else
#   <layer>       the object files
#
# Sources of a layer see exactly <layer>_api and its inner layers', so an include that points up the stack does not compile.
#
#   qo_layer(<layer> DEPENDS <lower layers> INNER <lower layers that only its sources see>
#            EXTERNAL <libraries that only its sources use> [HIDDEN])
function(qo_layer name)
    cmake_parse_arguments(arg "HIDDEN" "" "DEPENDS;INNER;EXTERNAL" ${ARGN})

    add_library(${name}_api INTERFACE)
    target_include_directories(${name}_api INTERFACE
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
    foreach(lower IN LISTS arg_DEPENDS)
        target_link_libraries(${name}_api INTERFACE ${lower}_api)
    endforeach()

    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/src/*.cpp)
    if(WIN32)
        list(FILTER sources EXCLUDE REGEX "_POSIX\\.cpp$")
    else()
        list(FILTER sources EXCLUDE REGEX "_WIN\\.cpp$")
    endif()
    add_library(${name} OBJECT ${sources})
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${name}_api PRIVATE qo_options ${arg_EXTERNAL})
    foreach(lower IN LISTS arg_INNER)
        target_link_libraries(${name} PRIVATE ${lower}_api)
    endforeach()
    if(arg_HIDDEN)
        set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
        target_precompile_headers(${name} REUSE_FROM qo_pch_hidden)
    else()
        set_target_properties(${name} PROPERTIES VISIBILITY_INLINES_HIDDEN ON)
        target_precompile_headers(${name} REUSE_FROM qo_pch)
    endif()
endfunction()

# One shared library out of several layers, of which it shows those that are not inner ones:
# qo_shared_library(<name> LAYERS ... INNER ... EXTERNAL ... LINK ...)
function(qo_shared_library name)
    cmake_parse_arguments(arg "" "" "LAYERS;INNER;EXTERNAL;LINK" ${ARGN})
    set(objects)
    foreach(layer IN LISTS arg_LAYERS arg_INNER)
        list(APPEND objects $<TARGET_OBJECTS:${layer}>)
    endforeach()
    add_library(${name} SHARED ${objects})
    foreach(layer IN LISTS arg_LAYERS)
        target_link_libraries(${name} PUBLIC ${layer}_api)
    endforeach()
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE qo_options ${arg_EXTERNAL})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
    # Calls within the library need no look-up when it is loaded.
    if(NOT WIN32)
        target_link_options(${name} PRIVATE LINKER:-Bsymbolic-functions)
    endif()
endfunction()

# TYPE and NAME of a file as a resource: its extension and stem, both in upper case.
function(qo_resource_of file type name)
    get_filename_component(stem ${file} NAME_WE)
    get_filename_component(extension ${file} LAST_EXT)
    string(REPLACE "." "" extension "${extension}")
    string(TOUPPER "${stem}" stem)
    string(TOUPPER "${extension}" extension)
    set(${type} "${extension}" PARENT_SCOPE)
    set(${name} "${stem}" PARENT_SCOPE)
endfunction()

# Embeds files in a library as resources: qo_embed_resources(<target> <symbol> FILES ...)
function(qo_embed_resources target symbol)
    cmake_parse_arguments(arg "" "" "FILES" ${ARGN})
    if(WIN32)
        qo_embed_resources_in_file(${target} ${symbol} ${arg_FILES})
        return()
    endif()
    set(assembler ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.S)
    set(text "    .section .rodata\n")
    set(table "")
    set(index 0)
    foreach(file IN LISTS arg_FILES)
        qo_resource_of(${file} extension stem)
        string(APPEND text "    .balign 16\nbegin${index}:\n    .incbin \"${file}\"\nend${index}:\n"
                           "type${index}: .asciz \"${extension}\"\nname${index}: .asciz \"${stem}\"\n")
        string(APPEND table "    .quad type${index}, name${index}, begin${index}, end${index} - begin${index}\n")
        math(EXPR index "${index} + 1")
    endforeach()
    string(APPEND text "    .section .data.rel.ro, \"aw\"\n    .balign 8\n    .globl ${symbol}\n    .hidden ${symbol}\n"
                       "${symbol}:\n    .quad ${index}\n${table}    .section .note.GNU-stack, \"\", %progbits\n")
    file(GENERATE OUTPUT ${assembler} CONTENT "${text}")
    target_sources(${target} PRIVATE ${assembler})
    set_source_files_properties(${assembler} TARGET_DIRECTORY ${target} PROPERTIES OBJECT_DEPENDS "${arg_FILES}"
        GENERATED TRUE LANGUAGE ASM SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# The same where programs' files have resources: in the section that the system's own calls look in.
function(qo_embed_resources_in_file target symbol)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.rc)
    set(text "")
    foreach(file IN LISTS ARGN)
        qo_resource_of(${file} extension stem)
        string(APPEND text "${stem} ${extension} \"${file}\"\n")
    endforeach()
    file(GENERATE OUTPUT ${script} CONTENT "${text}")
    target_sources(${target} PRIVATE ${script})
    set_source_files_properties(${script} TARGET_DIRECTORY ${target} PROPERTIES OBJECT_DEPENDS "${ARGN}"
        GENERATED TRUE LANGUAGE RC SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# Where tests and benches find the project's files and its program. A header and no definitions of each target, so that only
# those sources that include it depend on where the project lies.
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/paths/SourcePaths.h CONTENT "#pragma once
#define QO_SOURCE_DIR \"${CMAKE_SOURCE_DIR}\"
#define QO_WORKBENCH_PROGRAM \"${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/workbench${CMAKE_EXECUTABLE_SUFFIX}\"
")

# A layer's tests, one program: qo_test(<name> APIS <layers it may include> LINK <libraries>
# SUPPORT <sources of tests/support that it needs>)
function(qo_test name)
    cmake_parse_arguments(arg "" "" "APIS;LINK;SUPPORT" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
    if(NOT sources)
        return()
    endif()
    set(target ${name}_tests)
    list(TRANSFORM arg_SUPPORT PREPEND ${CMAKE_SOURCE_DIR}/tests/support/)
    add_executable(${target} ${sources} ${arg_SUPPORT})
    foreach(api IN LISTS arg_APIS)
        target_link_libraries(${target} PRIVATE ${api}_api)
    endforeach()
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support)
    target_link_libraries(${target} PRIVATE qo_options ${arg_LINK} GTest::gmock GTest::gtest_main)
    # Programs would be compiled with -fPIE, other than the precompiled header.
    target_compile_options(${target} PRIVATE -fPIC)
    target_precompile_headers(${target} REUSE_FROM qo_test_pch)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_include_directories(${target} PRIVATE ${CMAKE_BINARY_DIR}/paths)
    add_test(NAME ${name} COMMAND ${target})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tools/lsan.supp:print_suppressions=0")
endfunction()
