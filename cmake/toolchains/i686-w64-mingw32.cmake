# Cross-build for 32-bit (x86) Windows with mingw-w64: the server for 32-bit
# automation hosts, which load only a 32-bit DLL.
set(CMAKE_SYSTEM_PROCESSOR x86)
set(TK_MINGW_PREFIX i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
