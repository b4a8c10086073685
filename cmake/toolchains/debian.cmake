# A target that Debian has a cross compiler for, tested under qemu-user. The
# including file sets:
#   triplet   Debian's name of the target: compiler g++-<triplet>
#   emulator  qemu's name of it: qemu-<emulator>
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${emulator})
set(CMAKE_C_COMPILER ${triplet}-gcc) # GoogleTest asks for one
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})
# The cross compiler knows where its headers and libraries are; -L tells the
# emulator where to find the target's dynamic loader.
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${emulator};-L;/usr/${triplet})
