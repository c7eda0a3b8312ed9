# SPDX-License-Identifier: MIT
# A room is one row of the table in Documentation/architecture.md: a folder, a target and an include root of its own.
# A target sees another room's headers only when it links that room, so a forbidden include does not compile.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR})

add_library(zr_options INTERFACE)
target_compile_options(zr_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${ZRUIKIT_WERROR}>:-Werror>
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

# zr_include_root(<name> <prefix> <folder> [<public header>...]): headers of <folder> are included as <prefix/Header.h> by whoever
# links zr_headers_<name>. Several rooms may share a prefix. The public headers are installed, under an include root of their own,
# for whoever links a library that offers the root (zr_offer).
function(zr_include_root name prefix folder)
    set(root ${PROJECT_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${root})
    if(NOT EXISTS ${root}/${prefix})
        file(CREATE_LINK ${folder} ${root}/${prefix} SYMBOLIC COPY_ON_ERROR)
    endif()
    add_library(zr_headers_${name} INTERFACE)
    target_include_directories(zr_headers_${name} INTERFACE $<BUILD_INTERFACE:${root}>)
    if(ARGN AND ZRUIKIT_INSTALL)
        list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE headers)
        install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZRUIKit/${name}/${prefix} COMPONENT Development)
    endif()
endfunction()

# zr_offer(<library> <name>...): whoever links the library sees the public headers of these include roots. In the build tree
# the others of the same folders, too.
function(zr_offer library)
    foreach(name IN LISTS ARGN)
        target_include_directories(${library} INTERFACE $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include/${name}>
                                                        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ZRUIKit/${name}>)
        set_property(TARGET ${library} APPEND PROPERTY ZR_INCLUDE_ROOTS ${name})
    endforeach()
endfunction()

# zr_room(<target> PREFIX <prefix> [WING <wing>] FOLDER <folder> SEES <name>... SOURCES <file>...
#         [LIBRARY <library>] [LINKS <library>...] [PRIVATE_HEADERS <file>...|ALL])
# An object library that becomes part of a shared library, the kit's unless another is named. Its headers are known as
# zr_headers_<prefix><wing>, and public unless they are named as private. Rooms of one library share a precompiled header.
function(zr_room target)
    cmake_parse_arguments(ROOM "" "PREFIX;WING;FOLDER;LIBRARY" "SEES;SOURCES;LINKS;PRIVATE_HEADERS" ${ARGN})
    set(name ${ROOM_PREFIX}${ROOM_WING})
    set(headers "")
    if(NOT ROOM_PRIVATE_HEADERS STREQUAL ALL)
        file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${ROOM_FOLDER} ${ROOM_FOLDER}/*.h)
        list(REMOVE_ITEM headers ${ROOM_PRIVATE_HEADERS} none)
    endif()
    zr_include_root(${name} ${ROOM_PREFIX} ${ROOM_FOLDER} ${headers})
    list(TRANSFORM ROOM_SOURCES PREPEND ${ROOM_FOLDER}/)
    add_library(${target} OBJECT ${ROOM_SOURCES})
    target_link_libraries(${target} PRIVATE zr_options zr_headers_${name} ${ROOM_LINKS})
    foreach(seen IN LISTS ROOM_SEES)
        target_link_libraries(${target} PRIVATE zr_headers_${seen})
    endforeach()
    if(NOT ROOM_LIBRARY)
        set(ROOM_LIBRARY ZRUIKit)
    endif()
    get_property(owner GLOBAL PROPERTY ZR_PRECOMPILED_${ROOM_LIBRARY})
    if(ZRUIKIT_PCH AND owner)
        target_precompile_headers(${target} REUSE_FROM ${owner})
    elseif(ZRUIKIT_PCH)
        get_property(more GLOBAL PROPERTY ZR_PRECOMPILED_HEADERS_${ROOM_LIBRARY})
        target_precompile_headers(${target} PRIVATE <functional> <map> <memory> <optional> <string> <string_view> <vector> ${more})
        set_property(GLOBAL PROPERTY ZR_PRECOMPILED_${ROOM_LIBRARY} ${target})
    endif()
    set_property(GLOBAL APPEND PROPERTY ZR_ROOMS_${ROOM_LIBRARY} ${target})
endfunction()

# zr_rooms_into(<target> <library>): the objects of all rooms that name the library.
function(zr_rooms_into target library)
    get_property(rooms GLOBAL PROPERTY ZR_ROOMS_${library})
    foreach(room IN LISTS rooms)
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:${room}>)
    endforeach()
endfunction()

# zr_library(<library> <name>): the library of all rooms that name it, known as ZRUIKit::<name>.
function(zr_library library name)
    add_library(${library})
    add_library(ZRUIKit::${name} ALIAS ${library})
    zr_rooms_into(${library} ${library})
    target_link_libraries(${library} PRIVATE $<BUILD_INTERFACE:zr_options>)
    target_compile_features(${library} INTERFACE cxx_std_20)
    set_target_properties(${library} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                          EXPORT_NAME ${name} INSTALL_RPATH "$ORIGIN")
    # What the standard library's templates made of types of its own is exported whatever it is compiled with.
    set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
    target_link_options(${library} PRIVATE LINKER:--version-script=${exports})
    set_target_properties(${library} PROPERTIES LINK_DEPENDS ${exports})
endfunction()
