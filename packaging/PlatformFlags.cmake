# What pkg-config says of an external platform: sets platformCflags and platformLibs, both generator expressions.

set(platformCflags "")
set(platformLibs "")

macro(brantel_add_include_dirs dirs)
    string(APPEND platformCflags "$<$<BOOL:${dirs}>: -I$<JOIN:${dirs}, -I>>")
endmacro()

# Programs find the file in its folder, also if the loader does not search that.
macro(brantel_add_file file folder)
    string(APPEND platformLibs " ${file}"
        "$<$<NOT:$<IN_LIST:${folder},${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES}>>: -Wl,-rpath,${folder}>")
endmacro()

brantel_add_include_dirs("${BRANTEL_PLATFORM_INCLUDE_DIRS}")
set(libraries ${BRANTEL_PLATFORM_LIBRARIES})
while(libraries)
    list(POP_FRONT libraries library)
    if(NOT TARGET ${library})
        if(IS_ABSOLUTE ${library})
            cmake_path(GET library PARENT_PATH folder)
            brantel_add_file(${library} ${folder})
        elseif(library MATCHES "^-")
            string(APPEND platformLibs " ${library}")
        else()
            string(APPEND platformLibs " -l${library}")
        endif()
        continue()
    endif()

    get_target_property(isImported ${library} IMPORTED)
    if(isImported)
        brantel_add_include_dirs("$<TARGET_PROPERTY:${library},INTERFACE_INCLUDE_DIRECTORIES>")
    endif()
    get_target_property(type ${library} TYPE)
    if(type STREQUAL INTERFACE_LIBRARY)
        get_target_property(parts ${library} INTERFACE_LINK_LIBRARIES)
        if(parts)
            list(PREPEND libraries ${parts})
        endif()
    elseif(isImported)
        brantel_add_file("$<TARGET_LINKER_FILE:${library}>" "$<TARGET_FILE_DIR:${library}>")
    else()  # expected in the prefix
        string(APPEND platformLibs " -l$<TARGET_LINKER_FILE_BASE_NAME:${library}>")
    endif()
endwhile()
