# SPDX-License-Identifier: MIT
# 32-bit x86 with Debian's cross compiler; programs run under qemu-i386, as not every kernel runs
# 32-bit programs itself.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_OBJDUMP i686-linux-gnu-objdump)
set(CMAKE_NM i686-linux-gnu-nm)
# The tests' models need doubles without the excess precision of the old floating-point unit.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386 -L /usr/i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH /usr/i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
