# How Objective-C++ is compiled and what it is linked with: AppKit's own frameworks, or GNUstep on gcc's runtime.
# Memory is kept by retain and release, since gcc's runtime has nothing else.

enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)

# clang takes what it knows by itself (Protocol) for something else when it reads it from a precompiled header.
set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)

add_library(objective_cxx INTERFACE)
target_include_directories(objective_cxx INTERFACE ${PROJECT_SOURCE_DIR}/platform/cocoa/include)

if(APPLE)
  # The page is required to use some calls that newer ones have replaced.
  target_compile_options(objective_cxx INTERFACE -Wno-deprecated-declarations)
  target_link_libraries(objective_cxx INTERFACE objc
    "-framework AppKit" "-framework CoreFoundation" "-framework CoreServices" "-framework Foundation" "-framework IOKit")
  return()
endif()

# gcc's runtime headers lie among headers that are gcc's alone, so a folder with nothing but them is made.
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_headers OUTPUT_STRIP_TRAILING_WHITESPACE)
find_path(OBJC_HEADERS objc/objc.h PATHS ${gcc_headers} NO_DEFAULT_PATH REQUIRED)
find_path(GNUSTEP_HEADERS AppKit/AppKit.h PATH_SUFFIXES GNUstep REQUIRED)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/objc-headers)
file(CREATE_LINK ${OBJC_HEADERS}/objc ${PROJECT_BINARY_DIR}/objc-headers/objc SYMBOLIC)

target_compile_options(objective_cxx INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:
  -fobjc-runtime=gcc -fexceptions -fobjc-exceptions -fconstant-string-class=NSConstantString>)
target_compile_definitions(objective_cxx INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:
  GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_GUI_LIBRARY=1 GNU_RUNTIME=1 _NATIVE_OBJC_EXCEPTIONS>)
target_include_directories(objective_cxx INTERFACE ${PROJECT_SOURCE_DIR}/platform/cocoa/gnustep/include)
target_include_directories(objective_cxx SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/objc-headers ${GNUSTEP_HEADERS})
target_link_libraries(objective_cxx INTERFACE gnustep-gui gnustep-base objc)
