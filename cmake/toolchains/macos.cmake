# Compiles for macOS 12.0 and later, for one processor, with libraries of our own that are linked
# statically. script/package-macos uses it: on Linux with clang, lld and the SDK that MACOS_SDK names, on
# a Mac with Apple's tools.
#   CMAKE_OSX_ARCHITECTURES  arm64 or x86_64
#   NORVIK_LIBRARIES         folder that the libraries are installed in
#   NORVIK_LLVM              suffix of the tools' names on Linux, such as -19
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_OSX_ARCHITECTURES NORVIK_LIBRARIES NORVIK_LLVM)
set(CMAKE_OSX_DEPLOYMENT_TARGET 12.0 CACHE STRING "")
set(CMAKE_OSX_SYSROOT "$ENV{MACOS_SDK}" CACHE PATH "")

if(NOT CMAKE_HOST_APPLE)
  set(CMAKE_SYSTEM_NAME Darwin)
  set(CMAKE_SYSTEM_VERSION 21.0.0)
  set(CMAKE_SYSTEM_PROCESSOR ${CMAKE_OSX_ARCHITECTURES})
  foreach(language C CXX OBJC OBJCXX)
    set(CMAKE_${language}_COMPILER_TARGET ${CMAKE_OSX_ARCHITECTURES}-apple-macos12.0)
  endforeach()
  set(CMAKE_C_COMPILER clang${NORVIK_LLVM})
  set(CMAKE_CXX_COMPILER clang++${NORVIK_LLVM})
  set(CMAKE_OBJC_COMPILER clang${NORVIK_LLVM})
  set(CMAKE_OBJCXX_COMPILER clang++${NORVIK_LLVM})
  foreach(tool AR RANLIB NM STRIP OTOOL INSTALL_NAME_TOOL LIPO)
    string(TOLOWER ${tool} name)
    string(REPLACE _ - name ${name})
    find_program(NORVIK_${tool} llvm-${name}${NORVIK_LLVM} REQUIRED)
    set(CMAKE_${tool} "${NORVIK_${tool}}" CACHE FILEPATH "")
  endforeach()
  set(CMAKE_USER_MAKE_RULES_OVERRIDE "${CMAKE_CURRENT_LIST_DIR}/macos-rpath.cmake")
  # A signature that says nothing of the signer; Apple's linker makes it by itself.
  set(linker "-fuse-ld=lld -Wl,-adhoc_codesign")
endif()

# Nothing is changed after linking, so that the signature holds: the linker strips, and the paths are
# those of the installation.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "${linker} -Wl,-dead_strip -Wl,-dead_strip_dylibs -Wl,-S -Wl,-x")
endforeach()
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_MACOSX_RPATH ON)

# Only our libraries and the SDK, never those of this system or of Homebrew.
set(CMAKE_FIND_ROOT_PATH "${NORVIK_LIBRARIES}" "${CMAKE_OSX_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_LIBDIR} "${NORVIK_LIBRARIES}/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")
set(wxWidgets_CONFIG_EXECUTABLE "${NORVIK_LIBRARIES}/bin/wx-config" CACHE FILEPATH "")
