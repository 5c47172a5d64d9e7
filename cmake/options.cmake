# SPDX-License-Identifier: Apache-2.0
# What a builder may choose, and the flags that everything here is compiled with.
include(GNUInstallDirs)

set(QNL_PLATFORM standin CACHE STRING "The platform to build against: standin (platform/) or external")
set_property(CACHE QNL_PLATFORM PROPERTY STRINGS standin external)
set(QNL_PLATFORM_INCLUDE_DIRS "" CACHE STRING "The external platform's header folders")
set(QNL_PLATFORM_LIBRARY_DIRS "" CACHE STRING "The external platform's library folders")
option(QNL_BUILD_EXAMPLES "Build the examples, the tools among them" ${PROJECT_IS_TOP_LEVEL})
option(QNL_BUILD_TESTS "Build the tests, which run the examples" ${PROJECT_IS_TOP_LEVEL})
option(QNL_INSTALL "Install what is built" ${PROJECT_IS_TOP_LEVEL})
option(QNL_WERROR "Take warnings for errors" ${PROJECT_IS_TOP_LEVEL})
option(QNL_DEBIAN "Prepare Debian packages, for cpack" OFF)
set(QNL_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

if(NOT QNL_PLATFORM MATCHES "^(standin|external)$")
    message(FATAL_ERROR "QNL_PLATFORM is '${QNL_PLATFORM}': it must be standin or external.")
endif()
if(QNL_PLATFORM STREQUAL "external" AND NOT QNL_PLATFORM_INCLUDE_DIRS)
    message(FATAL_ERROR "QNL_PLATFORM is external: name its header folders in QNL_PLATFORM_INCLUDE_DIRS.")
endif()
if(QNL_BUILD_TESTS AND NOT QNL_BUILD_EXAMPLES)
    message(FATAL_ERROR "QNL_BUILD_TESTS needs QNL_BUILD_EXAMPLES: the tests run the examples.")
endif()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# The build folder leaves no trace in what is built there.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# Where a preset asks for it, a target's sources are compiled as one: most of the time goes into headers. A source whose
# local names clash with another's stays alone.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    if(NOT CMAKE_BUILD_TYPE)
        set(CMAKE_BUILD_TYPE Release)
    endif()
    string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${QNL_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # clang-tidy's own check of it costs a fifth of its time.
    add_compile_options(-Wreserved-identifier -Wreserved-macro-identifier)
endif()
add_link_options(-Wl,--enable-new-dtags)

# What ships is loaded by programs of every kind: a bug that is left should end the process, not become a way in.
add_compile_options("$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3;-fstack-protector-strong>")
add_link_options(-Wl,-z,relro,-z,now)

if(QNL_SANITIZE)
    # The check of vptr looks at memory through a pipe, and takes it for bad where no descriptor is left for one.
    add_compile_options(
        -fsanitize=${QNL_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QNL_SANITIZE})
endif()

# The thread sanitizer's shadow memory has no room for the address randomisation of newer kernels.
if(QNL_SANITIZE MATCHES "thread")
    execute_process(COMMAND setarch -R true RESULT_VARIABLE setarch_failed OUTPUT_QUIET ERROR_QUIET)
    if(NOT setarch_failed)
        set(CMAKE_CROSSCOMPILING_EMULATOR setarch -R)
    endif()
endif()

# A clang sanitizer's runtime is in the program alone, so its shared libraries cannot be linked whole.
if(NOT (QNL_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
    set(QNL_LINK_WHOLE -Wl,--no-undefined)
endif()
