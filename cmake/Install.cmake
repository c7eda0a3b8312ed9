# SPDX-License-Identifier: MIT
# What is installed: Runtime (libraries, their pictures and texts), Development (headers, package files, pages), TrimStudio.
# find_package(ZRUIKit COMPONENTS Qt Headless Port) gives ZRUIKit::Kit and what is named; so do pkg-config's modules zruikit,
# zruikit-qt, zruikit-headless and zruikit-port.
include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/ZRUIKit)
# Qt's targets stand in a file of their own: who does not want them needs no Qt.
set(targets_ ZRUIKit ZRUIKitHeadless ZRUIKitPort)
set(targets_Qt "")
if(ZRUIKIT_QT)
    set(targets_Qt ZRUIKitQt)
endif()
foreach(set "" Qt)
    if(targets_${set})
        install(TARGETS ${targets_${set}} EXPORT ZRUIKit${set}Targets
                LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
                ARCHIVE COMPONENT Development)
        install(EXPORT ZRUIKit${set}Targets NAMESPACE ZRUIKit:: DESTINATION ${package} COMPONENT Development)
    endif()
endforeach()
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZRUIKitConfig.cmake.in ${PROJECT_BINARY_DIR}/ZRUIKitConfig.cmake
                              INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZRUIKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZRUIKitConfig.cmake ${PROJECT_BINARY_DIR}/ZRUIKitConfigVersion.cmake
        DESTINATION ${package} COMPONENT Development)

# zr_pkg_config(<module> <library target> <description> <packages of its interface> <packages within>)
set(pkg_config ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix /${pkg_config} /)
function(zr_pkg_config module target description requires within)
    get_target_property(roots ${target} ZR_INCLUDE_ROOTS)
    list(TRANSFORM roots PREPEND "-I\${includedir}/" OUTPUT_VARIABLE flags)
    list(JOIN flags " " flags)
    get_target_property(kind ${target} TYPE)
    set(libraries "")
    if(NOT kind STREQUAL INTERFACE_LIBRARY)
        set(libraries "-L\${libdir} -l${target}")
    endif()
    # Programs link a static library's own libraries themselves. Of a shared one nothing is said: even "Requires.private" has to be
    # installed for as much as a header's place.
    if(kind STREQUAL STATIC_LIBRARY)
        string(APPEND requires " ${within}")
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/pkg-config.pc.in ${PROJECT_BINARY_DIR}/${module}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${pkg_config} COMPONENT Development)
endfunction()
zr_pkg_config(zruikit ZRUIKit "${PROJECT_DESCRIPTION}" "" "pugixml libplist-2.0")
zr_pkg_config(zruikit-headless ZRUIKitHeadless "ZRUIKit without a screen, for tests" "zruikit" "")
zr_pkg_config(zruikit-port ZRUIKitPort "What window systems implement for ZRUIKit" "zruikit" "")
if(ZRUIKIT_QT)
    zr_pkg_config(zruikit-qt ZRUIKitQt "ZRUIKit on Qt 6" "zruikit" "Qt6Widgets Qt6DBus")
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/Assets/ DESTINATION ${CMAKE_INSTALL_DATADIR}/ZRUIKit COMPONENT Runtime
        FILES_MATCHING PATTERN *.png PATTERN *.strings PATTERN *.xib PATTERN Sources EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ZRUIKit COMPONENT Runtime)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ZRUIKit COMPONENT Development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Documentation DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ZRUIKit COMPONENT Development)
