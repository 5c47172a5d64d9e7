# SPDX-License-Identifier: Apache-2.0
# A sample: 32-bit arm.
set(architecture armhf)
set(triple arm-linux-gnueabihf)
set(emulator qemu-arm)
set(CMAKE_SYSTEM_PROCESSOR arm)
# Else g++ notes wherever it passes arguments otherwise than before its version 7.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
