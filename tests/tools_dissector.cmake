# The generated Wireshark dissector says what wifiap-decode says: per packet the
# message, the time, every "tag name = value", every nested record and list
# item, every refusal. The committed capture is compared whole, then a few of
# its bodies damaged; the demo's own pcapng carries the trace's names.
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

# Converts a text capture, and keeps the decoding printed meanwhile.
function(convert capture pcapng out)
  execute_process(COMMAND ${DECODE} --pcapng ${pcapng} ${capture}
                  OUTPUT_VARIABLE o ERROR_VARIABLE e RESULT_VARIABLE rc)
  if(NOT rc MATCHES "^[01]$")
    message(FATAL_ERROR "wifiap-decode --pcapng ${capture}: status ${rc}, ${e}")
  endif()
  set(${out} "${o}" PARENT_SCOPE)
endfunction()

# The lines both outputs share, in one form. Brackets and semicolons become
# other characters first, so that CMake's lists keep every line whole.
function(normalize text out)
  string(REPLACE ";" "," text "${text}")
  string(REPLACE "[" "<" text "${text}")
  string(REPLACE "]" ">" text "${text}")
  string(REPLACE "\n" ";" lines "${text}")
  set(r "")
  foreach(l IN LISTS lines)
    string(STRIP "${l}" l)
    if(l MATCHES "^#[0-9]+ ([0-9.]+) (.*, [0-9]+ bytes|IntfWifiAp[A-Za-z]+ [0-9]+: no such message)$")
      set(what "${CMAKE_MATCH_2}")
      string(APPEND r "time ${CMAKE_MATCH_1}\n")
      if(what MATCHES "no such message$")
        string(APPEND r "refused ${what}\n")
      else()
        string(APPEND r "packet ${what}\n")
      endif()
    elseif(l MATCHES "^Epoch Time: ([0-9]+\\.[0-9][0-9][0-9][0-9][0-9][0-9])000 seconds$")
      string(APPEND r "time ${CMAKE_MATCH_1}\n")
    elseif(l MATCHES "^IntfWifiAp, (.*, [0-9]+ bytes)$")
      string(APPEND r "packet ${CMAKE_MATCH_1}\n")
    elseif(l MATCHES "^[0-9]+ [A-Za-z0-9_]+ = " OR
           l MATCHES "^[a-z][A-Za-z0-9]*(<[0-9]+>)?: [a-z][A-Za-z0-9]*$")
      string(APPEND r "${l}\n")
    elseif(l MATCHES "^!! (.*)$")
      string(APPEND r "refused ${CMAKE_MATCH_1}\n")
    elseif(l MATCHES "^<Expert Info \\(Error/Protocol\\): (.*)>$")
      string(APPEND r "refused ${CMAKE_MATCH_1}\n")
    elseif(l MATCHES "^\\(([0-9]+ more bytes after the payload)\\)$")
      string(APPEND r "note ${CMAKE_MATCH_1}\n")
    elseif(l MATCHES "^<Expert Info \\(Note/Protocol\\): (.*)>$")
      string(APPEND r "note ${CMAKE_MATCH_1}\n")
    endif()
  endforeach()
  set(${out} "${r}" PARENT_SCOPE)
endfunction()

function(agree name capture)
  convert(${capture} ${WORK}/${name}.pcapng decoded)
  tshark(${WORK}/${name}.pcapng dissected -V)
  normalize("${decoded}" want)
  normalize("${dissected}" got)
  file(WRITE ${WORK}/${name}.decoder "${want}")
  file(WRITE ${WORK}/${name}.dissector "${got}")
  if(NOT got STREQUAL want)
    message(FATAL_ERROR "${name}: the dissector and wifiap-decode disagree: "
                        "diff ${WORK}/${name}.decoder ${WORK}/${name}.dissector")
  endif()
  set(normalized "${got}" PARENT_SCOPE)
endfunction()

# (a) Every body of the committed capture, accepted and decoded alike.
agree(capture ${CAPTURE})
string(REGEX MATCHALL "\npacket " packets "\n${normalized}")
file(STRINGS ${CAPTURE} lines REGEX "^[0-9]")
list(LENGTH packets n)
list(LENGTH lines expected)
if(NOT n EQUAL expected OR normalized MATCHES "\n(refused|note) ")
  message(FATAL_ERROR "capture: ${n} packets of ${expected}, or one refused")
endif()

# (b) Bodies of the capture damaged: each refused, at the same place and in the
# same words as wifiap-decode, and no dissector error.
function(line table index type out)
  foreach(l IN LISTS lines)
    if(l MATCHES "^[0-9.]+ ${table} ${index} ${type} ")
      set(${out} "${l}" PARENT_SCOPE)
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "no ${table} ${index} ${type} body in ${CAPTURE}")
endfunction()
# Writes `bytes` (hex, "-" for none) over the body from byte `at`; then `keep`
# bytes of it remain (-1: all).
function(damage l at bytes keep out)
  string(REGEX MATCH "^([^ ]+ [^ ]+ [^ ]+ [^ ]+ )([0-9a-f]*)$" _ "${l}")
  set(head "${CMAKE_MATCH_1}")
  set(body "${CMAKE_MATCH_2}")
  math(EXPR a "2 * ${at}")
  if(bytes STREQUAL "-")
    set(bytes "")
  endif()
  string(LENGTH "${bytes}" n)
  math(EXPR b "${a} + ${n}")
  string(SUBSTRING "${body}" 0 ${a} before)
  string(LENGTH "${body}" end)
  set(after "")
  if(b LESS end)
    string(SUBSTRING "${body}" ${b} -1 after)
  endif()
  set(body "${before}${bytes}${after}")
  if(keep GREATER_EQUAL 0)
    math(EXPR k "2 * ${keep}")
    string(SUBSTRING "${body}" 0 ${k} body)
  endif()
  set(${out} "${head}${body}\n" PARENT_SCOPE)
endfunction()

line(IntfWifiApCmd 0 0 configure)
line(IntfWifiApCmd 0 1 configured)
line(IntfWifiApCmd 3 0 create)
line(IntfWifiApCmd 4 0 ssid)
line(IntfWifiApCmd 5 0 stop)
line(IntfWifiApCmd 13 1 stats)
line(IntfWifiApNtfy 0 0 probe)
line(IntfWifiApNtfy 1 0 devices)
set(damaged "")
set(bodies 1)  # the unknown row's below
foreach(d
    "configure 36 00000005 -1"        # value2's tag
    "configure 40 00000100 -1"        # value2's length past the end
    "configured 0 - 32"               # the body cut inside its last value
    "create 20 00000000 -1"           # the body version
    "stop 8 00 -1"                    # the magic
    "stop 24 0000000000000000 -1"     # bytes after the payload
    "ssid 39 4141414141 -1"           # a text without its NUL in its element
    "probe 49 78 -1"                  # a text over its field's capacity
    "devices 32 00000003 -1"          # a list one item longer than its elements
    "stats 0 - 1001"                  # cut inside the list of stations, at three depths
    "stats 0 - 5003"
    "stats 0 - 9998")
  separate_arguments(d UNIX_COMMAND "${d}")
  math(EXPR bodies "${bodies} + 1")
  list(GET d 0 which)
  list(GET d 1 at)
  list(GET d 2 bytes)
  list(GET d 3 keep)
  damage("${${which}}" ${at} "${bytes}" ${keep} l)
  string(APPEND damaged "${l}")
endforeach()
string(REGEX REPLACE "^[0-9.]+ IntfWifiApCmd 5 " "0.5 IntfWifiApCmd 40 " unknown "${stop}")
string(APPEND damaged "${unknown}\n")
file(WRITE ${WORK}/damaged.capture "${damaged}")
agree(damaged ${WORK}/damaged.capture)
string(REGEX MATCHALL "\n(refused|note) " refusals "\n${normalized}")
list(LENGTH refusals n)
if(NOT n EQUAL bodies)
  message(FATAL_ERROR "damaged: ${n} refusals and notes for ${bodies} bodies; "
                      "see ${WORK}/damaged.dissector")
endif()

# (c) The demo's own pcapng, its largest body (cut to what Wireshark reads)
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
