# Shared part of the cross toolchain files: Debian's cross compilers, Qt's host
# tools from /usr, and qemu-user to run what is built (tests, the demo host).
# The target's libraries and Qt come either from dpkg's multiarch folders
# (/usr/lib/<triplet>) or, when VO_SYSROOT names one, from a target root of
# their own (see scripts/target-sysroot.sh for why).
# Expects VO_TRIPLET and VO_QEMU from the file that includes it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${VO_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${VO_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${VO_TRIPLET})

set(VO_SYSROOT "" CACHE PATH "The target's root folder; empty: dpkg's multiarch packages")
# try_compile projects read the toolchain file again, without this cache.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VO_SYSROOT)

if(VO_SYSROOT)
  set(CMAKE_SYSROOT ${VO_SYSROOT})
  set(CMAKE_FIND_ROOT_PATH ${VO_SYSROOT})
else()
  set(CMAKE_FIND_ROOT_PATH /usr/${VO_TRIPLET})
endif()
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
if(VO_SYSROOT)
  set(ENV{PKG_CONFIG_SYSROOT_DIR} ${VO_SYSROOT})
  set(ENV{PKG_CONFIG_LIBDIR} ${VO_SYSROOT}/usr/lib/${VO_TRIPLET}/pkgconfig:${VO_SYSROOT}/usr/share/pkgconfig)
else()
  set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${VO_TRIPLET}/pkgconfig:/usr/share/pkgconfig)
endif()

# The target's loader and libraries must be used as they are: a QEMU_LD_PREFIX
# of /usr/<triplet> would pair the cross toolchain's loader with the target's
# libc.so.6, two builds that share private state, and every program spins in
# its first pthread_create. "-L" names the root qemu takes them from (and the
# Qt plugins, fonts and configuration), and keeps such a setting from taking
# effect: the sysroot, or "/" for multiarch (/lib/ld-linux-*, /usr/lib/<triplet>).
if(VO_SYSROOT)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VO_QEMU} -L ${VO_SYSROOT})
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VO_QEMU} -L /)
endif()
