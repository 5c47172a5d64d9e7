# SPDX-License-Identifier: Apache-2.0
# `cpack` makes three Debian packages from the three components that are installed.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "${PROJECT_NAME}")
set(CPACK_PACKAGE_CONTACT "qnl_privacy_indicator maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_HOMEPAGE_URL "")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# They need each other in the same version, which their dependencies below say.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${CMAKE_BINARY_DIR}/lib/device
    ${CMAKE_BINARY_DIR}/platform/hilog
    ${CMAKE_BINARY_DIR}/platform/utils
    ${CMAKE_BINARY_DIR}/platform/infrastructure
    ${CMAKE_BINARY_DIR}/platform/transport
    ${CMAKE_BINARY_DIR}/platform/ipc
    ${CMAKE_BINARY_DIR}/platform/samgr)
