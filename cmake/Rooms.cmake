# A room is one row of the table in Documentation/architecture.md: a folder, a target and an include root of its own.
# A target sees another room's headers only when it links that room, so a forbidden include does not compile.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR})

add_library(zr_options INTERFACE)
target_compile_options(zr_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    -ffp-contract=off
    # g++ 12 warns falsely at -O2 about appending literals to strings.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(ZRUIKIT_SANITIZE)
    target_compile_options(zr_options INTERFACE -fsanitize=${ZRUIKIT_SANITIZE} -fno-sanitize-recover=all
                                                -fno-omit-frame-pointer)
    target_link_options(zr_options INTERFACE -fsanitize=${ZRUIKIT_SANITIZE})
    # The sanitizers' instrumentation makes g++ see uninitialised values where there are none.
    target_compile_options(zr_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

# zr_include_root(<prefix> <folder> <public header>...): headers of <folder> are included as <prefix/Header.h> by whoever links
# zr_headers_<prefix>. The public ones are installed.
function(zr_include_root prefix folder)
    set(root ${PROJECT_BINARY_DIR}/include/${prefix})
    file(MAKE_DIRECTORY ${root})
    if(NOT EXISTS ${root}/${prefix})
        file(CREATE_LINK ${folder} ${root}/${prefix} SYMBOLIC COPY_ON_ERROR)
    endif()
    add_library(zr_headers_${prefix} INTERFACE)
    target_include_directories(zr_headers_${prefix} INTERFACE $<BUILD_INTERFACE:${root}>)
    if(ARGN)
        set_property(GLOBAL APPEND PROPERTY ZR_PUBLIC_ROOMS ${prefix})
        list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE headers)
        install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZRUIKit/${prefix})
    endif()
endfunction()

# zr_room(<name> PREFIX <prefix> FOLDER <folder> SEES <prefix>... SOURCES <file>... [PRIVATE_HEADERS <file>...])
# An object library that becomes part of the kit's shared library. Headers are public unless they are named.
function(zr_room name)
    cmake_parse_arguments(ROOM "" "PREFIX;FOLDER" "SEES;SOURCES;PRIVATE_HEADERS" ${ARGN})
    file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${ROOM_FOLDER} ${ROOM_FOLDER}/*.h)
    list(REMOVE_ITEM headers ${ROOM_PRIVATE_HEADERS} none)
    zr_include_root(${ROOM_PREFIX} ${ROOM_FOLDER} ${headers})
    list(TRANSFORM ROOM_SOURCES PREPEND ${ROOM_FOLDER}/)
    add_library(${name} OBJECT ${ROOM_SOURCES})
    target_link_libraries(${name} PRIVATE zr_options zr_headers_${ROOM_PREFIX})
    foreach(seen IN LISTS ROOM_SEES)
        target_link_libraries(${name} PRIVATE zr_headers_${seen})
    endforeach()
    if(ZRUIKIT_PCH)
        target_precompile_headers(${name} PRIVATE <functional> <map> <memory> <optional> <string> <string_view> <vector>)
    endif()
    set_property(GLOBAL APPEND PROPERTY ZR_ROOMS ${name})
endfunction()
