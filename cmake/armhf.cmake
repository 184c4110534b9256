# Toolchain file for the library's home: embedded Linux on 32-bit ARM, hard float, Thumb code.
# Its sysroot is made by scripts/armhf-sysroot; another one: -DTAVO_SYSROOT=<folder>.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(TAVO_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot CACHE PATH
    "Folder with the libraries and headers of the target")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TAVO_SYSROOT)
get_filename_component(CMAKE_SYSROOT ${TAVO_SYSROOT} ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/include)
    message(FATAL_ERROR
        "There is no sysroot in ${CMAKE_SYSROOT}; make it with scripts/armhf-sysroot, or name yours with -DTAVO_SYSROOT=<folder>.")
endif()

# Without notes about a change of GCC 7.1 in how some arguments are passed: nothing older is linked.
# Without -Wuse-after-free: on ARM a destructor returns its object's address, also the one that frees
# it, and GCC 12 takes that for a use. The other builds have the warning.
set(CMAKE_CXX_FLAGS_INIT "-mthumb -march=armv7-a+fp -mfloat-abi=hard -Wno-psabi -Wno-use-after-free")
# Small before fast. Set whole: to an initial value CMake would append its own -O3.
set(CMAKE_CXX_FLAGS_RELEASE "-Os -DNDEBUG" CACHE STRING "Flags of the release flavour")

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig)

# What is built runs here too, sockets included.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm;-L;${CMAKE_SYSROOT})
