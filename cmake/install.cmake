# SPDX-License-Identifier: Apache-2.0
# The installed tree can be moved: it finds everything relative to itself.
include(CMakePackageConfigHelpers)

set(package qnl_privacy_indicator)
set(package_dir lib/cmake/${package})
set(version_file ${CMAKE_CURRENT_BINARY_DIR}/${package}ConfigVersion.cmake)

install(TARGETS qnl_privacy_indicator_service_intf EXPORT ${package} LIBRARY DESTINATION lib)
install(TARGETS qnl_privacy_indicator_service_intf_device EXPORT ${package}
    LIBRARY DESTINATION lib/${package}/device)
if(QNL_PLATFORM STREQUAL "standin")
    install(TARGETS qnl_privacy_indicator_testing EXPORT ${package} ARCHIVE DESTINATION lib)
    install(DIRECTORY testing/ DESTINATION include/${package}_testing FILES_MATCHING PATTERN *.h)
endif()
install(DIRECTORY interfaces/ DESTINATION include/${package} FILES_MATCHING PATTERN *.h)
install(EXPORT ${package} NAMESPACE qnl:: DESTINATION ${package_dir} FILE ${package}Targets.cmake)
write_basic_package_version_file(${version_file} COMPATIBILITY SameMajorVersion)
install(FILES cmake/${package}Config.cmake ${version_file} DESTINATION ${package_dir})
