# Runs one check, CHECK, on a mutant, PLUGIN: it must end with RESULT, within LIMIT seconds, and
# say WORDS, and the build must be called not conformant.
execute_process(COMMAND ${TARVO} check ${PLUGIN} --only ${CHECK} --time-limit ${LIMIT}
  RESULT_VARIABLE code OUTPUT_VARIABLE said ERROR_VARIABLE said)
message("${said}")
if(NOT code EQUAL 1)
  message(FATAL_ERROR "the exit code is ${code}; a build that is not conformant has 1")
endif()
if(NOT said MATCHES "(^|\n)${RESULT} +[0-9.]+ s  ${CHECK}\n" OR
   NOT said MATCHES "\nnot conformant: 1 ${RESULT}\n$")
  message(FATAL_ERROR "${CHECK} was to end so: ${RESULT}")
endif()
string(FIND "${said}" "${WORDS}" at)
if(at EQUAL -1)
  message(FATAL_ERROR "${CHECK} was to say: ${WORDS}")
endif()
