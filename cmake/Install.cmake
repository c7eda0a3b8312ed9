# SPDX-License-Identifier: MIT
# find_package(ZRUIKit COMPONENTS Qt Headless) gives ZRUIKit::Kit, ZRUIKit::Qt and ZRUIKit::Headless.
include(CMakePackageConfigHelpers)

set(targets ZRUIKit ZRUIKitHeadless)
if(ZRUIKIT_QT)
    list(APPEND targets ZRUIKitQt)
endif()
get_property(rooms GLOBAL PROPERTY ZR_PUBLIC_ROOMS)
foreach(room IN LISTS rooms)
    list(APPEND targets zr_headers_${room})
endforeach()
set_target_properties(ZRUIKit PROPERTIES EXPORT_NAME Kit)
set_target_properties(ZRUIKitHeadless PROPERTIES EXPORT_NAME Headless)
if(ZRUIKIT_QT)
    set_target_properties(ZRUIKitQt PROPERTIES EXPORT_NAME Qt)
endif()

install(TARGETS ${targets} EXPORT ZRUIKitTargets)
install(EXPORT ZRUIKitTargets NAMESPACE ZRUIKit:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZRUIKit)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Assets/ DESTINATION ${CMAKE_INSTALL_DATADIR}/ZRUIKit
        FILES_MATCHING PATTERN *.png PATTERN *.strings PATTERN *.xib PATTERN Sources EXCLUDE)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZRUIKitConfig.cmake.in ${PROJECT_BINARY_DIR}/ZRUIKitConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZRUIKit)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZRUIKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZRUIKitConfig.cmake ${PROJECT_BINARY_DIR}/ZRUIKitConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZRUIKit)
