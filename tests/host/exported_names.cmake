# aaanc offers the platform's names, and no other name of C linkage.
# Variables: NM, EXECUTABLE, EXPORTED_LIST.
execute_process(COMMAND ${NM} --dynamic --defined-only --format=posix ${EXECUTABLE}
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${output}")
set(offered)
foreach(symbol ${symbols})
  string(REGEX REPLACE " .*" "" name "${symbol}")
  if(NOT name MATCHES "^_Z") # C++ linkage
    list(APPEND offered ${name})
  endif()
endforeach()
set(expected
  CMF_ClientContextClose CMF_ClientContextInit CMF_ClientContextObjSet CMF_ClientParamDecode
  CMF_ClientParamEncode CMF_ClientRequestSend CMF_ClientResponseRecv CMF_ClientServiceReg
  NLOG_Send gnl_strlcpy sr_convert_hexstring_to_string sr_free_change_iter sr_free_val
  sr_get_change_next sr_get_changes_iter sr_strerror sr_subtree_change_subscribe sr_unsubscribe
  sr_xpath_key_value sr_xpath_node_name srp_ll_syslog)
list(SORT offered)
list(SORT expected)
if(NOT offered STREQUAL expected)
  message(FATAL_ERROR "offered:  ${offered}\nexpected: ${expected}")
endif()
