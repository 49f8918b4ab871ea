# WebAssembly with Debian's Emscripten: a program is a .js file, which node or a page loads, beside its
# .wasm file.  The libraries are static.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
# Exceptions and lanes of 128 bits as every browser has had them since 2023: without the former, what is
# thrown ends the program, without the latter a spectrum takes twice the time.  What links the libraries
# is compiled with both.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions -msimd128")
# A definition may have any number of samples.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-sALLOW_MEMORY_GROWTH=1")
# Linking runs Emscripten's scripts, whose modules only Debian's own node finds by itself.
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
