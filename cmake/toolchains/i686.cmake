# Linux on 32-bit x86 with SSE2: the x87 registers are wider than a double and would give samples
# other values.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
