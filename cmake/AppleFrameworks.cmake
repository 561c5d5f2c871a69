# What the adapters for the Mac stand on, as the target quorvane_apple_frameworks: the frameworks
# themselves; elsewhere, for tests only, stand-ins over GNUstep, where clang, GNUstep's Foundation and
# a runtime for blocks are installed. Without them there is no such target, and nothing is built of it.
if(APPLE)
  enable_language(OBJCXX)
  add_library(quorvane_apple_frameworks INTERFACE)
  target_link_libraries(quorvane_apple_frameworks INTERFACE "-framework Foundation"
    "-framework AppKit" "-framework AuthenticationServices" "-framework CoreLocation"
    "-framework CoreServices" "-framework Photos" "-framework Security"
    "-framework UserNotifications")
  return()
endif()

if(NOT BUILD_TESTING OR CMAKE_CXX_FLAGS_DEBUG MATCHES "sanitize=(thread|fuzzer)")
  return()
endif()
find_program(QUORVANE_OBJCXX clang++)
find_path(GNUSTEP_INCLUDE Foundation/Foundation.h PATHS /usr/include/GNUstep)
find_library(GNUSTEP_BASE gnustep-base)
find_library(BLOCKS_RUNTIME BlocksRuntime)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=include
  OUTPUT_VARIABLE objc_include OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libobjc.so
  OUTPUT_VARIABLE objc_library OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT QUORVANE_OBJCXX OR NOT GNUSTEP_INCLUDE OR NOT GNUSTEP_BASE OR NOT BLOCKS_RUNTIME OR
   NOT EXISTS ${objc_include}/objc/objc.h OR NOT EXISTS ${objc_library})
  message(STATUS "The adapters for the Mac are not tested: clang or GNUstep is missing")
  return()
endif()

set(CMAKE_OBJCXX_COMPILER ${QUORVANE_OBJCXX})
set(CMAKE_OBJCXX_STANDARD ${CMAKE_CXX_STANDARD})
set(CMAKE_OBJCXX_EXTENSIONS OFF)
enable_language(OBJCXX)
# Of the C++ compiler again: without them it reads the common headers anew in every source.
set(CMAKE_PCH_EXTENSION .gch)
set(CMAKE_PCH_PROLOGUE "#pragma GCC system_header")
# What the C++ compiler's sanitizer library has no handlers for.
set(CMAKE_OBJCXX_FLAGS_DEBUG
  "${CMAKE_CXX_FLAGS_DEBUG} -fno-sanitize=vptr,function -Wno-unknown-warning-option")

add_library(quorvane_apple_frameworks INTERFACE)
target_include_directories(quorvane_apple_frameworks SYSTEM INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:${PROJECT_SOURCE_DIR}/tests/macos/frameworks;${GNUSTEP_INCLUDE}>)
target_compile_options(quorvane_apple_frameworks INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:
  -fobjc-runtime=gcc;-fblocks;-fexceptions;-fobjc-exceptions;-fPIC
  -fconstant-string-class=NSConstantString;SHELL:-idirafter ${objc_include}>)
target_compile_definitions(quorvane_apple_frameworks INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP;GNUSTEP_BASE_LIBRARY=1;GNU_RUNTIME=1;_NATIVE_OBJC_EXCEPTIONS>)
# The runtime for blocks comes first: GNUstep has names of its own for some of it.
target_link_libraries(quorvane_apple_frameworks INTERFACE ${BLOCKS_RUNTIME} ${GNUSTEP_BASE}
  ${objc_library} Threads::Threads)
