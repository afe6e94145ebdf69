# The part of the mingw-w64 cross-builds (posix thread model) that both
# bitnesses share; the toolchain file of each sets CMAKE_SYSTEM_PROCESSOR and
# TK_MINGW_PREFIX and includes this one.
#
# Everything is linked statically (libgcc, libstdc++, winpthreads), so the
# server DLL and the test programs need no compiler runtime DLLs beside them.
# Programs that the build itself runs (the type-library generator) run
# through Wine (a 32-bit build needs Wine's 32-bit half, wine32).
set(CMAKE_SYSTEM_NAME Windows)

set(CMAKE_C_COMPILER ${TK_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TK_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TK_MINGW_PREFIX}-windres)
set(CMAKE_AR ${TK_MINGW_PREFIX}-ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${TK_MINGW_PREFIX}-ranlib CACHE FILEPATH "")

set(CMAKE_FIND_ROOT_PATH /usr/${TK_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

find_program(TK_WINE_PROGRAM NAMES wine wine64)
if(TK_WINE_PROGRAM)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${TK_WINE_PROGRAM})
endif()
