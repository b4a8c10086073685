# Holds the names that the plug-in exports, imports and needs to these, which are
# those of a release build. Other targets have lists of their own: cmake/toolchains.
# Usage: cmake -DREADELF=... -DPLUGIN=... -P names.cmake
cmake_minimum_required(VERSION 3.25)

set(exports sr_plugin_init_cb sr_plugin_cleanup_cb SYSTEM_SCRIPT_CHS SYSTEM_SCRIPT_CHS_INTERFACE)
set(needed libc.so.6)
set(imports
  # the platform
  sr_subtree_change_subscribe sr_unsubscribe
  sr_get_changes_iter sr_get_change_next sr_free_change_iter sr_free_val
  sr_xpath_node_name sr_xpath_key_value sr_strerror
  sr_convert_hexstring_to_string srp_ll_syslog
  CMF_ClientServiceReg CMF_ClientContextInit CMF_ClientContextObjSet CMF_ClientParamEncode
  CMF_ClientRequestSend CMF_ClientResponseRecv CMF_ClientParamDecode CMF_ClientContextClose
  NLOG_Send gnl_strlcpy
  # libc
  __stack_chk_fail inet_pton memcmp memcpy strchr strcmp strlen strncpy strpbrk strtol)

function(readelf out)
  execute_process(COMMAND ${READELF} ${ARGN} ${PLUGIN}
    OUTPUT_VARIABLE text RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${READELF} ${ARGN} ${PLUGIN} fails")
  endif()
  string(REPLACE "\n" ";" lines "${text}")
  set(${out} "${lines}" PARENT_SCOPE)
endfunction()

set(found_exports)
set(found_imports)
readelf(symbols --dyn-syms --wide)
foreach(line IN LISTS symbols)
  # Num: Value Size Type Bind Vis Ndx Name[@version]
  if(NOT line MATCHES "(GLOBAL|WEAK) +[A-Z]+ +([0-9]+|UND) +([^ @]+)")
    continue()
  endif()
  set(name ${CMAKE_MATCH_3})
  if(CMAKE_MATCH_2 STREQUAL "UND")
    list(APPEND found_imports ${name})
  else()
    list(APPEND found_exports ${name})
  endif()
endforeach()

set(found_needed)
readelf(dynamic --dynamic --wide)
foreach(line IN LISTS dynamic)
  if(line MATCHES "\\(NEEDED\\).*: *(.+)")
    string(REGEX REPLACE "[][]" "" name "${CMAKE_MATCH_1}")
    list(APPEND found_needed ${name})
  endif()
endforeach()

set(failed FALSE)
foreach(kind IN ITEMS exports imports needed)
  list(SORT ${kind})
  list(SORT found_${kind})
  if(NOT ${kind} STREQUAL found_${kind})
    set(failed TRUE)
    message("${kind}:\n  expected ${${kind}}\n  found    ${found_${kind}}")
  endif()
endforeach()
if(failed)
  message(FATAL_ERROR "${PLUGIN} does not hold to its names")
endif()
