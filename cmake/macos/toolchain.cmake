# Compiles and links for macOS on Linux, with what cmake/macos/sdk put together in TAVINSTALL_MACOS_SDK. What comes out
# has never run: it shows that every source compiles, that every call exists in the release it is built for, and that
# nothing is missing when it is linked.
#
#   -DCMAKE_OSX_ARCHITECTURES=arm64 | x86_64

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${CMAKE_OSX_ARCHITECTURES})
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TAVINSTALL_MACOS_SDK CMAKE_OSX_ARCHITECTURES)

set(CMAKE_C_COMPILER /usr/bin/clang-14)
set(CMAKE_CXX_COMPILER /usr/bin/clang++-14)
set(CMAKE_OBJCXX_COMPILER /usr/bin/clang++-14)
foreach(language IN ITEMS C CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET ${CMAKE_OSX_ARCHITECTURES}-apple-macos${CMAKE_OSX_DEPLOYMENT_TARGET})
  set(CMAKE_${language}_FLAGS_INIT "-Werror=unguarded-availability-new")
  if(NOT language STREQUAL "C")
    # Before those beside the compiler, which do not say in which releases a part exists.
    string(APPEND CMAKE_${language}_FLAGS_INIT
      " -stdlib=libc++ -stdlib++-isystem ${TAVINSTALL_MACOS_SDK}/usr/include/c++/v1")
  endif()
endforeach()
set(CMAKE_OSX_SYSROOT ${TAVINSTALL_MACOS_SDK})
set(CMAKE_AR /usr/bin/llvm-ar-14)
set(CMAKE_RANLIB /usr/bin/llvm-ranlib-14)
set(CMAKE_INSTALL_NAME_TOOL /bin/true)
foreach(kind IN ITEMS EXE MODULE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "--ld-path=/usr/bin/ld64.lld-14 -mlinker-version=609")
endforeach()

set(CMAKE_FIND_ROOT_PATH ${TAVINSTALL_MACOS_SDK} ${TAVINSTALL_MACOS_SDK}/opt)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
