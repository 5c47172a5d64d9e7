# SPDX-License-Identifier: Apache-2.0
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/qnl_privacy_indicatorTargets.cmake)
