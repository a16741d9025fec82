# One interface target carries what all code is compiled with.
add_library(tavelor_options INTERFACE)
target_include_directories(tavelor_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_definitions(tavelor_options INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS QT_NO_FOREACH
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
target_compile_options(tavelor_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wold-style-cast
    $<$<BOOL:${TAVELOR_WARNINGS_AS_ERRORS}>:-Werror>)
target_link_options(tavelor_options INTERFACE -Wl,--as-needed)
if(TAVELOR_SANITIZE)
    target_compile_options(tavelor_options INTERFACE
        -fsanitize=${TAVELOR_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(tavelor_options INTERFACE -fsanitize=${TAVELOR_SANITIZE})
endif()

# tavelor_folder(NAME SOURCES... LINKS TARGETS...): the target of one folder.
function(tavelor_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "SOURCES;LINKS")
    add_library(${name} STATIC ${folder_SOURCES})
    target_link_libraries(${name} PUBLIC tavelor_options ${folder_LINKS})
endfunction()

# tavelor_bodies(NAME ...): the same for bodies of the seam. The folders above know the seam's
# headers only, so a static library would come too early in the linker's list; objects do not.
# What they link is given as objects, too: `NAME.linked` is these and everything below them in one
# library without undefined symbols, so that something that is used from above does not build.
function(tavelor_bodies name)
    cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "SOURCES;LINKS")
    add_library(${name} OBJECT ${folder_SOURCES})
    target_link_libraries(${name} PUBLIC tavelor_options ${folder_LINKS})
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)

    set(below ${name})
    foreach(link ${folder_LINKS})
        get_target_property(type ${link} TYPE)
        if(type STREQUAL OBJECT_LIBRARY)
            get_target_property(its ${link} TAVELOR_BODIES_BELOW)
            list(APPEND below ${its})
        endif()
    endforeach()
    list(REMOVE_DUPLICATES below)
    set_target_properties(${name} PROPERTIES TAVELOR_BODIES_BELOW "${below}")
    if(NOT TAVELOR_SANITIZE) # whose symbols are the program's
        add_library(${name}.linked MODULE)
        target_link_libraries(${name}.linked PRIVATE ${below})
        target_link_options(${name}.linked PRIVATE -Wl,-z,defs)
    endif()
endfunction()

# tavelor_body_set(NAME BODIES...): bodies that programs choose together.
function(tavelor_body_set name)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ARGN})
    foreach(bodies ${ARGN})
        target_sources(${name} INTERFACE $<TARGET_OBJECTS:${bodies}>)
    endforeach()
endfunction()
