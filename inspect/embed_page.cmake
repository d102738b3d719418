# Makes a document a C++ text: cmake -D PAGE=... -D TARGET=... -P embed_page.cmake
file(READ "${PAGE}" text)
file(WRITE "${TARGET}" "R\"page(${text})page\"\n")
