# Warnings and hardening that all of the project is built with.
add_library(aaanc-flags INTERFACE)
target_compile_options(aaanc-flags INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wformat=2 -Wno-format-nonliteral -Wconversion -Wsign-conversion
  -Wshadow -Wundef -Wcast-align -Wcast-qual -Wnull-dereference -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
  -fstack-protector-strong -fvisibility=hidden)
target_link_options(aaanc-flags INTERFACE -Wl,-z,relro -Wl,-z,noexecstack)

if(AAANC_SANITIZE)
  target_compile_options(aaanc-flags INTERFACE
    -fsanitize=${AAANC_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(aaanc-flags INTERFACE -fsanitize=${AAANC_SANITIZE})
elseif(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  target_compile_options(aaanc-flags INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
