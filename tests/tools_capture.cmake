# The demo still makes the committed capture: the same bodies, times aside.
execute_process(COMMAND ${EMULATOR} ${DEMO} --stations 2 --capture ${OUT}
                OUTPUT_QUIET RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "wifiap-demo failed: ${rc}")
endif()
foreach(f OUT EXPECTED)
  file(STRINGS ${${f}} lines REGEX "^[0-9]")
  list(TRANSFORM lines REPLACE "^[0-9.]+ " "")
  set(${f}_bodies "${lines}")
endforeach()
if(NOT OUT_bodies STREQUAL EXPECTED_bodies)
  message(FATAL_ERROR "the demo's bodies differ from ${EXPECTED}: regenerate it (README)")
endif()
