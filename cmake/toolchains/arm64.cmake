# SPDX-License-Identifier: Apache-2.0
# A sample: 64-bit arm.
set(architecture arm64)
set(triple aarch64-linux-gnu)
set(emulator qemu-aarch64)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
