# 32-bit armhf handsets, against a target root made by scripts/target-sysroot.sh
# (scripts/cross-test.sh armhf makes it and passes it):
#   cmake -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux-gnueabihf.cmake -DVO_SYSROOT=DIR
# Without VO_SYSROOT it uses the armhf multiarch packages, as arm64 does.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(VO_TRIPLET arm-linux-gnueabihf)
set(VO_QEMU /usr/bin/qemu-arm-static)
# gcc notes that passing some iterators by value changed ABI in gcc 7.1, at
# every use; nothing here links with code built before that.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
