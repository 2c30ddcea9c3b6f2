# CMake asks the Mac that it runs on whether the linker knows this option; elsewhere it takes it for unknown.
set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
