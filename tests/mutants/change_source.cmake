# Writes SOURCE to CHANGED with the one replacement that REPLACEMENT_FILE describes.
include(${REPLACEMENT_FILE})
file(READ ${SOURCE} source)
string(FIND "${source}" "${TEXT}" first)
string(FIND "${source}" "${TEXT}" last REVERSE)
if(first EQUAL -1 OR NOT first EQUAL last)
  message(FATAL_ERROR "The mutant ${NAME} replaces text that must occur exactly once in ${FILE}. "
    "The source has changed: adapt TEXT in tests/mutants/CMakeLists.txt.\n${TEXT}")
endif()
string(REPLACE "${TEXT}" "${REPLACEMENT}" source "${source}")
file(WRITE ${CHANGED} "${source}")
