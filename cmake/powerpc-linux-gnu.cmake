# Cross build for the node: 32-bit big-endian PowerPC, with Debian's compiler; what is built runs under qemu-ppc.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-ppc;-L;/usr/powerpc-linux-gnu")

# Debian has neither SQLite nor ZeroMQ for this processor; scripts/cross-zeromq builds the latter, for the messages. These
# are variables and not options, so that a configured tree takes up ZeroMQ as soon as it is there.
set(BRANTEL_WITH_SQL OFF)
set(crossZeroMq ${CMAKE_CURRENT_LIST_DIR}/../build/zeromq-ppc)
set(ENV{PKG_CONFIG_LIBDIR} ${crossZeroMq}/lib/pkgconfig)
if(NOT EXISTS ${crossZeroMq}/lib/libzmq.so)
    set(BRANTEL_WITH_MESSAGE OFF)
endif()

set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu ${crossZeroMq})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Boost's headers fit any machine, but -I/usr/include would bring the host's C library headers along: they are reached
# through a directory that holds them alone.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/host-headers)
file(CREATE_LINK /usr/include/boost ${CMAKE_BINARY_DIR}/host-headers/boost SYMBOLIC)
set(Boost_NO_BOOST_CMAKE ON)
set(Boost_INCLUDE_DIR ${CMAKE_BINARY_DIR}/host-headers CACHE PATH "Boost's headers")
