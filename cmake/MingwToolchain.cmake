# Windows programs by mingw-w64 on another system, run there by Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QVMAP_MINGW x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${QVMAP_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QVMAP_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${QVMAP_MINGW}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${QVMAP_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH) # header-only libraries are the same everywhere
find_path(QVMAP_STB_INCLUDE_DIR stb_image.h PATHS /usr/include/stb NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH) # alone there
set(ZLIB_USE_STATIC_LIBS ON)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")  # one file that needs nothing but the system
find_program(QVMAP_WINE NAMES wine64 wine wine-stable PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(QVMAP_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${QVMAP_WINE}")
endif()
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}/mingw")
