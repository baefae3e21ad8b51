# Cross build of the Windows DLLs with mingw-w64 (Debian: g++-mingw-w64-x86-64).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QLM_MINGW_PREFIX x86_64-w64-mingw32)

# The -posix variant brings std::thread should a later unit need it.
find_program(CMAKE_CXX_COMPILER NAMES ${QLM_MINGW_PREFIX}-g++-posix ${QLM_MINGW_PREFIX}-g++ REQUIRED)
find_program(CMAKE_C_COMPILER NAMES ${QLM_MINGW_PREFIX}-gcc-posix ${QLM_MINGW_PREFIX}-gcc REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${QLM_MINGW_PREFIX}-windres REQUIRED)

set(CMAKE_FIND_ROOT_PATH /usr/${QLM_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000000)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
