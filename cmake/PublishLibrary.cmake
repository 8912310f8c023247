# Makes `target` the library brantel::`component`, here and for those who find the installed package.
#
# While the version is 0.x, each minor version may change the binary interface: the soname has both numbers.
function(brantel_publish_library target component)
    add_library(brantel::${component} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${component} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL INTERFACE_LIBRARY)
        target_compile_features(${target} INTERFACE cxx_std_17)
    else()
        target_compile_features(${target} PUBLIC cxx_std_17)
    endif()
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/brantel>)

    set_property(GLOBAL APPEND PROPERTY BRANTEL_COMPONENTS ${component})
    if(BRANTEL_INSTALL)
        install(TARGETS ${target} EXPORT brantel
            LIBRARY COMPONENT brantel_runtime NAMELINK_COMPONENT brantel_development
            ARCHIVE COMPONENT brantel_development)
    endif()
endfunction()

# Installs the headers in the folders named.
function(brantel_publish_headers)
    if(BRANTEL_INSTALL)
        list(TRANSFORM ARGN APPEND /)
        install(DIRECTORY ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/brantel COMPONENT brantel_development)
    endif()
endfunction()
