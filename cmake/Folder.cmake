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
function(tavelor_bodies name)
    cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "SOURCES;LINKS")
    add_library(${name} OBJECT ${folder_SOURCES})
    target_link_libraries(${name} PUBLIC tavelor_options ${folder_LINKS})
endfunction()
