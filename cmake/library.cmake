# SPDX-License-Identifier: Apache-2.0
set(library qnl_privacy_indicator_service_intf)

file(GLOB sources CONFIGURE_DEPENDS client/*.cpp composer/*.cpp ipc/*.cpp model/*.cpp util/*.cpp)

add_library(${library} SHARED ${sources})
add_library(qnl::privacy_indicator_service_intf ALIAS ${library})
set_target_properties(${library} PROPERTIES
    EXPORT_NAME privacy_indicator_service_intf
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
target_compile_features(${library} PUBLIC cxx_std_17)
# A unique symbol would keep the library in the process for ever, dlclose or not.
target_compile_options(${library} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
target_include_directories(${library}
    PUBLIC
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/interfaces>
        $<INSTALL_INTERFACE:include/qnl_privacy_indicator>
    PRIVATE client composer ipc model util)
set(exports ${CMAKE_CURRENT_SOURCE_DIR}/cmake/exports.map)
set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${exports})
target_link_options(${library}
    PRIVATE ${QNL_LINK_WHOLE} -Wl,--version-script=${exports}
    # A caller may use no symbol of the library, only virtual calls: without it the proxies would not be registered.
    PUBLIC -Wl,--no-as-needed)

if(QNL_PLATFORM STREQUAL "external")
    target_include_directories(${library} SYSTEM PUBLIC "$<BUILD_INTERFACE:${QNL_PLATFORM_INCLUDE_DIRS}>")
    target_link_directories(${library} PUBLIC "$<BUILD_INTERFACE:${QNL_PLATFORM_LIBRARY_DIRS}>")
else()
    set_target_properties(${library} PROPERTIES INSTALL_RPATH "\$ORIGIN/qnl_privacy_indicator/platform/lib")
endif()
# The stand-in's targets, or the names of the device's libraries.
target_link_libraries(${library} PUBLIC utils ipc_single samgr_proxy hilog qnl_infrastructure)
