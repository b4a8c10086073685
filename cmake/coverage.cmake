# Counts of the lines and branches that a target runs. The plug-in alone is
# counted: what tests are made of, and what they compile in, is not.
option(AAANC_COVERAGE "Count the lines and branches of the plug-in that run" OFF)

function(aaanc_count_coverage target)
  if(AAANC_COVERAGE)
    # Not optimised, whatever else is: a branch is then one of the source. Tests
    # play callbacks in several threads at once, so counts are atomic.
    target_compile_options(${target} PRIVATE -O0 --coverage -fprofile-update=atomic)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()
