# 32-bit ARM, little-endian.
set(triplet arm-linux-gnueabihf)
set(emulator arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
