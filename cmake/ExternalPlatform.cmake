# The platform that BRANTEL_PLATFORM_... describe, as the target brantel_platform.

if(BRANTEL_PLATFORM_PACKAGE AND PROJECT_IS_TOP_LEVEL)  # a project around this one has its targets already
    find_package(${BRANTEL_PLATFORM_PACKAGE} REQUIRED)
endif()

add_library(brantel_platform INTERFACE)
target_include_directories(brantel_platform SYSTEM INTERFACE ${BRANTEL_PLATFORM_INCLUDE_DIRS})
target_link_libraries(brantel_platform INTERFACE ${BRANTEL_PLATFORM_LIBRARIES})

# The installed libraries find those of the platform.
if(NOT DEFINED CMAKE_INSTALL_RPATH_USE_LINK_PATH)
    set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
endif()
