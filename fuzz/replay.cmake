# SPDX-License-Identifier: Apache-2.0
# Replays the seeds of a fuzz target: cmake -DPROGRAM=... -DSEEDS=... -DSCRATCH=... -P replay.cmake
# The target gets an empty folder for its temporary files and has to leave it so.
file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")
set(ENV{TMPDIR} "${SCRATCH}")
execute_process(COMMAND "${PROGRAM}" "${SEEDS}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}")
endif()
file(GLOB left RELATIVE "${SCRATCH}" "${SCRATCH}/*")
if(left)
  message(FATAL_ERROR "left behind in the folder for temporary files: ${left}")
endif()
