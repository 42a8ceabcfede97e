# Runs PROGRAM in the folder SAMPLES; OUTPUT must become what SAMPLES/expected/marks.csv is, byte for byte.
set(ENV{KELROOTS_ANSI_CODE_PAGE} 1252)   # the encoding of the samples
file(REMOVE ${OUTPUT})
execute_process(COMMAND ${PROGRAM} --no-settings --output ${OUTPUT} . WORKING_DIRECTORY ${SAMPLES} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "part_marks ended with ${status}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${SAMPLES}/expected/marks.csv
                RESULT_VARIABLE differs)
if(differs)
    message(FATAL_ERROR "${OUTPUT} is not ${SAMPLES}/expected/marks.csv")
endif()
