# Cross build for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64-posix):
#
#   cmake -S . -B build-windows -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw64.cmake
#
# The posix thread model is the one whose libstdc++ has std::thread and
# std::mutex. The runtime (libgcc, libstdc++, winpthread) is linked statically
# into every program and DLL, so that they run on a bare Windows, or under
# Wine, with no MinGW DLL beside them. Tests run through Wine when it is
# installed (CMAKE_CROSSCOMPILING_EMULATOR), in a prefix inside the build folder.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(DUNX_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${DUNX_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${DUNX_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${DUNX_MINGW_TRIPLET}-windres)

# Headers and libraries of the target only; programs (cmake, ninja) of the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/${DUNX_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# -static links only the compiler's own libraries statically: DUNXBase.dll
# stays a DLL, linked through its import library.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()

# Wine with a prefix of the build folder's own (made on first use), quiet, and
# without the .NET and HTML engines that it would offer to install.
if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
    find_program(DUNX_WINE NAMES wine wine64)
    if(DUNX_WINE)
        set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/env WINEPREFIX=${CMAKE_BINARY_DIR}/wine
            WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml= ${DUNX_WINE})
    endif()
endif()
