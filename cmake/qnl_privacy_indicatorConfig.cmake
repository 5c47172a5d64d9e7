# SPDX-License-Identifier: Apache-2.0
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/qnl_privacy_indicatorTargets.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/qnl_privacy_indicatorTools.cmake OPTIONAL)

# What COMPONENTS may name, and what each is there for.
set(component_targets
    library=qnl::privacy_indicator_service_intf
    device=qnl::privacy_indicator_service_intf_device
    testing=qnl::privacy_indicator_testing
    tools=qnl::indicator_ctl)
foreach(component IN LISTS qnl_privacy_indicator_FIND_COMPONENTS)
    set(target ${component_targets})
    list(FILTER target INCLUDE REGEX "^${component}=")
    list(TRANSFORM target REPLACE "^.*=" "")
    if(TARGET "${target}")
        set(qnl_privacy_indicator_${component}_FOUND TRUE)
    elseif(qnl_privacy_indicator_FIND_REQUIRED_${component})
        set(qnl_privacy_indicator_FOUND FALSE)
        if(target)
            set(reason "is not installed")
        else()
            set(reason "does not exist: there are library, device, testing and tools")
        endif()
        set(qnl_privacy_indicator_NOT_FOUND_MESSAGE "Its component ${component} ${reason}.")
    endif()
endforeach()
