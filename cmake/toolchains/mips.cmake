# 32-bit MIPS, big-endian.
set(triplet mips-linux-gnu)
set(emulator mips)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
