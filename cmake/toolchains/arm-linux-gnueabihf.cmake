# 32-bit armhf handsets: cmake -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux-gnueabihf.cmake
set(CMAKE_SYSTEM_PROCESSOR arm)
set(VO_TRIPLET arm-linux-gnueabihf)
set(VO_QEMU /usr/bin/qemu-arm-static)
include(${CMAKE_CURRENT_LIST_DIR}/debian-multiarch.cmake)
