# Linux on 32-bit ARM with hardware floating point (armhf), the device's own
# processor family and word size: Debian's g++-arm-linux-gnueabihf, with the
# programs run under qemu-user (qemu-arm) against the cross sysroot.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(KALBOR_CROSS_TRIPLE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${KALBOR_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${KALBOR_CROSS_TRIPLE}-g++)

set(CMAKE_FIND_ROOT_PATH /usr/${KALBOR_CROSS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# add_test() and CTest run the target programs through the emulator.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/${KALBOR_CROSS_TRIPLE})
