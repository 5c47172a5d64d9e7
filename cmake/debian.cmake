# SPDX-License-Identifier: Apache-2.0
# `cpack` makes three Debian packages of the three components that are installed.
if(NOT QNL_INSTALL OR NOT TARGET qnl_man_pages)
    message(FATAL_ERROR "QNL_DEBIAN needs QNL_INSTALL, QNL_BUILD_EXAMPLES, the stand-in and help2man.")
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
# Folders are made with the umask, whichever permissions cpack is told to give them.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/packaging/folders.cmake)
file(WRITE ${CPACK_PRE_BUILD_SCRIPTS} [[
execute_process(COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} -type d -exec chmod 755 {} +
    COMMAND_ERROR_IS_FATAL ANY)
]])
set(CPACK_PACKAGE_CONTACT "${PROJECT_NAME} maintainers <maintainers@qnl-privacy-indicator.invalid>")
set(CPACK_COMPONENTS_ALL library development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib/device)
foreach(folder hilog utils infrastructure transport ipc samgr)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/platform/${folder})
endforeach()

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqnl-privacy-indicator)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS dbus-daemon)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "privacy indicator service, client library
The client side of the privacy indicator service of OpenHarmony devices, in its
two variants, and a stand-in for the platform libraries that it runs on.")

set(this_version "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqnl-privacy-indicator-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqnl-privacy-indicator ${this_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "privacy indicator service, development files
Headers, CMake and pkg-config files, and a test kit for users of the service.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qnl-privacy-indicator-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libqnl-privacy-indicator ${this_version}, dbus-daemon")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "privacy indicator service, tools
A service that keeps everything in memory, a command for each of its requests,
a live board, and a bus to run them on.")

# What each package has under share/doc, and the complaints of lintian that are answered.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(name ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(folder ${PROJECT_BINARY_DIR}/packaging/${name})
    file(WRITE ${folder}/changelog "qnl-privacy-indicator (${PROJECT_VERSION}) unstable; urgency=medium\n
  * Packaged from version ${PROJECT_VERSION}; the project's CHANGELOG.md says what changed.\n
 -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    execute_process(COMMAND gzip -9nf ${folder}/changelog COMMAND_ERROR_IS_FATAL ANY)
    install(FILES packaging/copyright ${folder}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
    if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/${name}.lintian-overrides)
        install(FILES packaging/${name}.lintian-overrides
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${name} COMPONENT ${component})
    endif()
endforeach()
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}
    COMPONENT development)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}
    COMPONENT development FILES_MATCHING PATTERN *.md)
include(CPack)
