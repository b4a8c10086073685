# 32-bit PowerPC, big-endian: the device's own kind.
set(triplet powerpc-linux-gnu)
set(emulator ppc)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
