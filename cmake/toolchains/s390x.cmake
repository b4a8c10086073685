# 64-bit IBM Z, big-endian.
set(triplet s390x-linux-gnu)
set(emulator s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
