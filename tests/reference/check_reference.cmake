# cmake -DPROGRAM=nexaro-page -DREFERENCE=docs/reference.md -P check_reference.cmake
# Fails when the checked-in reference differs from what the built classes describe.
string(RANDOM LENGTH 8 suffix)
set(fresh "${CMAKE_CURRENT_BINARY_DIR}/reference-${suffix}.md")
execute_process(COMMAND "${PROGRAM}" --describe all --format markdown --output "${fresh}"
  RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "nexaro-page --describe all failed (${result}): ${errors}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files "${fresh}" "${REFERENCE}" RESULT_VARIABLE differs)
if(differs)
  execute_process(COMMAND diff -u "${REFERENCE}" "${fresh}" OUTPUT_VARIABLE changes)
  file(REMOVE "${fresh}")
  message(FATAL_ERROR "${REFERENCE} is stale; regenerate it with ./scripts/update-reference.sh\n${changes}")
endif()
file(REMOVE "${fresh}")
