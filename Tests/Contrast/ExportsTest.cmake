execute_process(COMMAND ${NM} --dynamic --defined-only --format=just-symbols ${BINARY}
    OUTPUT_VARIABLE symbols OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols STREQUAL "EntryPointFunc")
    message(FATAL_ERROR "The plug-in exports: ${symbols}")
endif()
