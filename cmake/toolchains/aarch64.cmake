# 64-bit ARM, little-endian.
set(triplet aarch64-linux-gnu)
set(emulator aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
