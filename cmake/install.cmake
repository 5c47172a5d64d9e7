# SPDX-License-Identifier: Apache-2.0
# The installed tree can be moved: it finds everything relative to itself. It has three components: the library with
# what it runs on, what one needs to develop against it, and the tools.
include(CMakePackageConfigHelpers)

set(package qnl_privacy_indicator)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${package})
set(version_file ${CMAKE_CURRENT_BINARY_DIR}/${package}ConfigVersion.cmake)

install(TARGETS qnl_privacy_indicator_service_intf EXPORT ${package}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(TARGETS qnl_privacy_indicator_service_intf_${other} EXPORT ${package}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${package}/${other} COMPONENT library)
if(QNL_PLATFORM STREQUAL "standin")
    install(TARGETS qnl_privacy_indicator_testing EXPORT ${package}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    install(DIRECTORY testing/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${package}_testing COMPONENT development
        FILES_MATCHING PATTERN *.h)

    # For pkg-config. Its files name the folder that the tree is installed to, which is known then at the earliest.
    # A folder that is an absolute path stays as it is.
    set(libdir [[${prefix}]])
    set(includedir [[${prefix}]])
    set(modules_dir [[${CMAKE_INSTALL_PREFIX}]])
    cmake_path(APPEND libdir ${CMAKE_INSTALL_LIBDIR})
    cmake_path(APPEND includedir ${CMAKE_INSTALL_INCLUDEDIR})
    cmake_path(APPEND modules_dir ${CMAKE_INSTALL_LIBDIR} pkgconfig)
    function(qnl_install_module module template variant folder)
        set(file ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc)
        configure_file(cmake/${template}.pc.in ${file} @ONLY)
        install(FILES ${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
        install(CODE "set(file \"\$ENV{DESTDIR}${modules_dir}/${module}.pc\")" COMPONENT development)
        install(CODE [[
            file(READ "${file}" text)
            cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
            string(REPLACE " " "\\ " prefix "${prefix}")
            string(REPLACE "<prefix>" "${prefix}" text "${text}")
            file(WRITE "${file}" "${text}")
        ]] COMPONENT development)
    endfunction()
    qnl_install_module(${package} ${package} emulator "")
    qnl_install_module(${package}_device ${package} device /${package}/device)
    qnl_install_module(${package}_testing ${package}_testing "" "")
endif()
install(DIRECTORY interfaces/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${package} COMPONENT development
    FILES_MATCHING PATTERN *.h)
install(EXPORT ${package} NAMESPACE qnl:: DESTINATION ${package_dir} FILE ${package}Targets.cmake
    COMPONENT development)
configure_file(cmake/${package}Config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/${package}Config.cmake @ONLY)
write_basic_package_version_file(${version_file} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${package}Config.cmake ${version_file}
    DESTINATION ${package_dir} COMPONENT development)
