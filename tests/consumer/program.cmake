# SPDX-License-Identifier: Apache-2.0
# The first program of README, a page, becomes a file, whose path is left in `program`.
file(READ ${README} page)
string(REGEX REPLACE ".*\n```cpp\n([^`]*)```.*" "\\1" text "${page}")
set(program ${CMAKE_CURRENT_BINARY_DIR}/main.cpp)
file(WRITE ${program} "${text}")
