# The demo's pcapng in Wireshark: every packet with the message, sender and
# receivers the demo's trace shows. (What the dissector makes of the bodies is
# held to the library by wifiap-differential.)
file(MAKE_DIRECTORY ${WORK})

function(tshark pcapng out)
  execute_process(COMMAND ${TSHARK} -n -X lua_script:${LUA} -r ${pcapng} ${ARGN}
                  OUTPUT_VARIABLE o ERROR_VARIABLE e RESULT_VARIABLE rc)
  string(REGEX REPLACE "Running as user [^\n]*dangerous\\.\n" "" e "${e}")
  if(NOT rc EQUAL 0 OR NOT e STREQUAL "" OR o MATCHES "Lua Error|Malformed Packet|Dissector bug")
    file(WRITE ${pcapng}.txt "${o}")
    message(FATAL_ERROR "tshark on ${pcapng}: status ${rc}, ${e}; see ${pcapng}.txt")
  endif()
  set(${out} "${o}" PARENT_SCOPE)
endfunction()

# The demo's own pcapng, its largest body (cut to what Wireshark reads)
# included: every packet with the sender and receivers its trace shows.
execute_process(COMMAND ${DEMO} --stations 100 --capture ${WORK}/demo.pcapng
                OUTPUT_VARIABLE trace RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "wifiap-demo --capture ${WORK}/demo.pcapng: status ${rc}")
endif()
string(REGEX MATCHALL "\n#[0-9]+ [^\n]*" blocks "${trace}")
set(want "")
foreach(b IN LISTS blocks)
  string(REGEX REPLACE " \\(refused, code [0-9]+\\)" "" b "${b}")
  string(REGEX REPLACE "^\n#[0-9]+ [a-z >-]+  (.*), [0-9]+ bytes  \\[(.*) -> (.*)\\]$" "\\1|\\2|\\3" b "${b}")
  string(REPLACE "|nobody" "|" b "${b}")
  string(APPEND want "${b}\n")
endforeach()
tshark(${WORK}/demo.pcapng got -T fields -E separator=| -e wifiap.message -e wifiap.sender
       -e wifiap.receiver)
if(NOT got STREQUAL want OR want STREQUAL "")
  file(WRITE ${WORK}/demo.trace "${want}")
  file(WRITE ${WORK}/demo.fields "${got}")
  message(FATAL_ERROR "the demo's pcapng and its trace disagree: "
                      "diff ${WORK}/demo.trace ${WORK}/demo.fields")
endif()
