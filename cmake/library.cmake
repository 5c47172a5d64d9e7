# SPDX-License-Identifier: Apache-2.0
# The library in its two variants, `emulator` and `device`. They differ in the gate to the service
# alone, and share their file name and SONAME, so that a program is switched by its library path.
set(library qnl_privacy_indicator_service_intf)
set(exports ${CMAKE_CURRENT_SOURCE_DIR}/cmake/exports.map)

file(GLOB sources CONFIGURE_DEPENDS client/*.cpp composer/*.cpp ipc/*.cpp model/*.cpp util/*.cpp)
list(FILTER sources EXCLUDE REGEX "/client/gate_[a-z]+\\.cpp$")

# The names of the device's libraries, or the stand-in's targets.
set(platform utils ipc_single samgr_proxy hilog qnl_infrastructure)
if(QNL_PLATFORM STREQUAL "standin")
    list(TRANSFORM platform PREPEND qnl::)
endif()

# What all that is compiled from the library's sources has in common.
function(qnl_configure target)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_include_directories(${target}
        PUBLIC
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/interfaces>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qnl_privacy_indicator>
        PRIVATE client composer ipc model util)
    if(QNL_PLATFORM STREQUAL "external")
        target_include_directories(${target} SYSTEM PUBLIC "$<BUILD_INTERFACE:${QNL_PLATFORM_INCLUDE_DIRS}>")
        target_link_directories(${target} PUBLIC "$<BUILD_INTERFACE:${QNL_PLATFORM_LIBRARY_DIRS}>")
        # As a device compiles. Its platform exports no type information, and lays out RefBase by the definition.
        target_compile_definitions(${target} PUBLIC OHOS_PLATFORM)
        target_compile_options(${target} PRIVATE -fno-rtti)
    endif()
    target_link_libraries(${target} PUBLIC ${platform})
endfunction()

# Everything but the gate, compiled once. The tests link it with a gate of their own.
add_library(qnl_ungated OBJECT ${sources})
file(GLOB alone CONFIGURE_DEPENDS ipc/*_stub*.cpp model/*.cpp)
set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
qnl_configure(qnl_ungated)

# A variant, installed into lib/`folder`, from where the stand-in is `to_platform`.
function(qnl_add_variant target variant to_platform)
    add_library(${target} SHARED client/gate_${variant}.cpp $<TARGET_OBJECTS:qnl_ungated>)
    qnl_configure(${target})
    string(REGEX REPLACE "^qnl_" "" name ${target})
    add_library(qnl::${name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        OUTPUT_NAME ${library}
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/${variant})
    # A host may set a folder for each configuration, which would be the same for both variants.
    foreach(config IN LISTS CMAKE_BUILD_TYPE CMAKE_CONFIGURATION_TYPES)
        string(TOUPPER ${config} config)
        set_property(TARGET ${target} PROPERTY LIBRARY_OUTPUT_DIRECTORY_${config})
    endforeach()
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
    target_link_options(${target}
        PRIVATE
            ${QNL_LINK_WHOLE}
            -Wl,--version-script=${exports}
            # Its own functions are found at link time, not by name at each load.
            -Wl,-Bsymbolic-functions
            # The platform goes on calling the client after a program's dlclose: the code must stay until the exit.
            -Wl,-z,nodelete
        # A caller may use no symbol of the library, only virtual calls: without it the proxies would not be registered.
        PUBLIC -Wl,--no-as-needed)
    if(QNL_PLATFORM STREQUAL "standin")
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "\$ORIGIN/${to_platform}")
    endif()
endfunction()

# The main one and the other: on a device it is the device's that programs find by themselves.
set(main emulator)
set(other device)
if(QNL_PLATFORM STREQUAL "external")
    set(main device)
    set(other emulator)
endif()
qnl_add_variant(${library} ${main} qnl_privacy_indicator/platform/lib)
qnl_add_variant(${library}_${other} ${other} ../platform/lib)
