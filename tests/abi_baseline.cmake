# Dumps the library's ABI as the public header describes it; MODE=update
# writes the dump to BASELINE, otherwise it is compared with BASELINE and only
# added functions or variables pass.
# --exported-interfaces-only: without it, abidw 2.2 loses a function whose
# declaration DWARF of another translation unit sorts before its definition.
execute_process(COMMAND ${ABIDW} --no-corpus-path --exported-interfaces-only
                        --headers-dir ${HEADERS} --drop-private-types --no-show-locs
                        --type-id-style hash --out-file ${OUT} ${LIB}
                RESULT_VARIABLE rc ERROR_VARIABLE err)
if(rc)
  message(FATAL_ERROR "abidw failed (${rc}): ${err}")
endif()
if(MODE STREQUAL "update")
  get_filename_component(dir ${BASELINE} DIRECTORY)
  file(MAKE_DIRECTORY ${dir})
  file(COPY_FILE ${OUT} ${BASELINE})
  message(STATUS "wrote ${BASELINE}")
  return()
endif()
# An addition alone sets abidiff's change bit too, unless left out of the report.
execute_process(COMMAND ${ABIDIFF} --no-added-syms ${BASELINE} ${OUT}
                RESULT_VARIABLE rc OUTPUT_VARIABLE report ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the ABI differs from ${BASELINE} (abidiff ${rc}); if intended, "
                      "run scripts/update-abi.sh\n${report}${err}")
endif()
