# 32-bit x86 with Debian's cross compiler. Programs are linked statically, so that they run here
# without that machine's system libraries, under qemu-i386: not every kernel runs 32-bit programs.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_OBJDUMP i686-linux-gnu-objdump)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386)
set(CMAKE_FIND_ROOT_PATH /usr/i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
