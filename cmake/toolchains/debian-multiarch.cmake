# Shared part of the cross toolchain files: Debian's cross compilers, the
# target's multiarch libraries and Qt under /usr/lib/<triplet>, Qt's host
# tools from /usr, and qemu-user to run what is built (tests, the demo host).
# Expects VO_TRIPLET and VO_QEMU from the file that includes it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${VO_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${VO_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${VO_TRIPLET})

set(CMAKE_FIND_ROOT_PATH /usr/${VO_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(QT_HOST_PATH /usr CACHE PATH "Qt host tools (moc, rcc, uic)")
# Qt looks for its *Tools packages (LinguistTools: lupdate, lrelease) beside the
# target's Qt; Debian installs the build machine's under its own multiarch folder.
execute_process(COMMAND gcc -print-multiarch OUTPUT_VARIABLE _vo_build_multiarch
                OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(_vo_build_multiarch)
  set(QT_ADDITIONAL_HOST_PACKAGES_PREFIX_PATH /usr/lib/${_vo_build_multiarch}/cmake
      CACHE STRING "The build machine's Qt tool packages")
endif()

# Debian has no <triplet>-pkg-config; the plain one reads the target's .pc files.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${VO_TRIPLET}/pkgconfig:/usr/share/pkgconfig)

# The target's loader and libraries are installed multiarch (/lib/ld-linux-*,
# /usr/lib/<triplet>) and must be used as they are: a QEMU_LD_PREFIX of
# /usr/<triplet> would pair the cross toolchain's loader with the multiarch
# libc.so.6, two builds that share private state, and every program spins in
# its first pthread_create. "-L /" keeps such a setting from taking effect.
set(CMAKE_CROSSCOMPILING_EMULATOR ${VO_QEMU} -L /)
