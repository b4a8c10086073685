# Holds the names that the plug-in exports, imports and needs to the allowed ones.
# Usage: cmake -DREADELF=... -DPLUGIN=... -P names.cmake
cmake_minimum_required(VERSION 3.25)

set(exports sr_plugin_init_cb sr_plugin_cleanup_cb SYSTEM_SCRIPT_CHS SYSTEM_SCRIPT_CHS_INTERFACE)
set(needed libc.so.6)
set(platform
  sr_subtree_change_subscribe sr_unsubscribe
  sr_get_changes_iter sr_get_change_next sr_free_change_iter sr_free_val
  sr_xpath_node_name sr_xpath_key_value sr_strerror
  sr_convert_hexstring_to_string srp_ll_syslog
  CMF_ClientServiceReg CMF_ClientContextInit CMF_ClientContextObjSet CMF_ClientParamEncode
  CMF_ClientRequestSend CMF_ClientResponseRecv CMF_ClientParamDecode CMF_ClientContextClose
  NLOG_Send gnl_strlcpy)
# What may come from libc: strings, numbers, addresses, and what compilers add.
set(libc
  memchr memcmp memcpy memmove memset
  strchr strcmp strcpy strlen strncmp strncpy strnlen strpbrk strstr strtol sscanf __isoc99_sscanf inet_pton
  __memcpy_chk __memmove_chk __memset_chk __strcpy_chk __strncpy_chk
  __stack_chk_fail __cxa_finalize __gmon_start__
  _ITM_deregisterTMCloneTable _ITM_registerTMCloneTable)

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
set(found_platform)
set(unexpected)
readelf(symbols --dyn-syms --wide)
foreach(line IN LISTS symbols)
  # Num: Value Size Type Bind Vis Ndx Name[@version]
  if(NOT line MATCHES "(GLOBAL|WEAK) +[A-Z]+ +([0-9]+|UND) +([^ @]+)")
    continue()
  endif()
  set(name ${CMAKE_MATCH_3})
  if(NOT CMAKE_MATCH_2 STREQUAL "UND")
    list(APPEND found_exports ${name})
  elseif(name IN_LIST platform)
    list(APPEND found_platform ${name})
  elseif(NOT name IN_LIST libc)
    list(APPEND unexpected ${name})
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
foreach(kind IN ITEMS exports platform needed)
  list(SORT ${kind})
  list(SORT found_${kind})
  if(NOT ${kind} STREQUAL found_${kind})
    set(failed TRUE)
    message("${kind}:\n  expected ${${kind}}\n  found    ${found_${kind}}")
  endif()
endforeach()
if(unexpected)
  set(failed TRUE)
  message("imports that are not allowed: ${unexpected}")
endif()
if(failed)
  message(FATAL_ERROR "${PLUGIN} does not hold to its names")
endif()
