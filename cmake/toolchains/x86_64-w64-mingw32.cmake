# 64-bit Windows with Debian's MinGW-w64 (the posix thread model, so that
# std::thread works), with the programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KALBOR_CROSS_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KALBOR_CROSS_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KALBOR_CROSS_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KALBOR_CROSS_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KALBOR_CROSS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# libstdc++, libgcc and winpthread are linked into each program and into the
# DLL, so that nothing but Windows' own DLLs and Kalbor400U.dll is needed at
# run time.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

# add_test() and CTest run the programs through tools/ci/wine-run, which
# keeps its Wine prefix in the build tree (created on first use).
get_filename_component(_kalbor_source_dir "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${_kalbor_source_dir}/tools/ci/wine-run)
unset(_kalbor_source_dir)
