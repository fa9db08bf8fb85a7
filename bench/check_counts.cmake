# Compares the work that the programs count (no times) with counts_PROGRAM.txt, to the last digit: more work per flash, or less,
# is to be seen in the change that brings it. Called by the tests; after such a change:
#   sh bench/run.sh --counts
execute_process(COMMAND ${EMULATOR} ${PROGRAM} --counts OUTPUT_VARIABLE counted RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} --counts: ${result}")
endif()
string(REPLACE "\r" "" counted "${counted}")
file(READ ${EXPECTED} expected)
if(NOT counted STREQUAL expected)
  message(FATAL_ERROR "the work has changed; sh bench/run.sh --counts writes the new counts\nnow:\n${counted}\nbefore:\n${expected}")
endif()
