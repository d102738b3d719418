# Configures a build for macOS on Linux; scripts/check-macos fetches the compiler first.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${CMAKE_OSX_ARCHITECTURES})
set(CMAKE_CXX_COMPILER ${CMAKE_CURRENT_LIST_DIR}/clang++)
set(CMAKE_AR ${CMAKE_CURRENT_LIST_DIR}/archive CACHE FILEPATH "")
set(CMAKE_RANLIB ":" CACHE STRING "") # the archiver has made the index
set(CMAKE_INSTALL_NAME_TOOL ${CMAKE_COMMAND} CACHE FILEPATH "") # asked for, never called
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_OSX_ARCHITECTURES)
