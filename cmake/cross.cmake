# Debian's cross compilers, named by the preset: WIFIAP_TRIPLET, WIFIAP_PROCESSOR
# and WIFIAP_ARCH, the compiler's own defaults stated so that the target does
# not move with the compiler.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES WIFIAP_TRIPLET WIFIAP_PROCESSOR WIFIAP_ARCH)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${WIFIAP_PROCESSOR})
set(CMAKE_C_COMPILER ${WIFIAP_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${WIFIAP_TRIPLET}-g++)
set(CMAKE_C_FLAGS_INIT "${WIFIAP_ARCH}")
set(CMAKE_CXX_FLAGS_INIT "${WIFIAP_ARCH}")
set(CMAKE_FIND_ROOT_PATH /usr/${WIFIAP_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# How the target's programs run here is the project's choice, made once the
# compiler is known: cmake/runner.cmake.
