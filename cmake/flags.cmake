set(WIFIAP_WARNINGS -Wall -Wextra -Werror)

if(WIFIAP_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(WIFIAP_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# The library itself: no exceptions, no RTTI, nothing from libstdc++ at run time.
function(wifiap_library_flags target)
  target_compile_options(${target} PRIVATE ${WIFIAP_WARNINGS}
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>)
  # abidw reads the types from DWARF (-g leaves the code as it is); mapped
  # paths keep the dump the same wherever the tree is checked out.
  if(WIFIAP_ABI_BASELINE)
    target_compile_options(${target} PRIVATE -g -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
                           -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
  endif()
endfunction()

# Project programs and tests: warnings are errors too.
function(wifiap_warnings target)
  target_compile_options(${target} PRIVATE ${WIFIAP_WARNINGS})
endfunction()
