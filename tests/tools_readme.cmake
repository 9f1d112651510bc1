# The README's C host is tools/examples/example_host.c, word for word.
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```c\n${example}```" at)
if(at EQUAL -1)
  message(FATAL_ERROR "README.md's C example differs from ${EXAMPLE}")
endif()
