# What every target of the project shares: warnings are errors, one include root, Qt text without
# implicit conversions from narrow strings.
add_library(quorvane_options INTERFACE)
target_compile_options(quorvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
  -Wimplicit-fallthrough -Werror)
target_compile_definitions(quorvane_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QUORVANE_VERSION="${PROJECT_VERSION}")
target_include_directories(quorvane_options INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})

# quorvane_library(NAME [other libraries...]): one static library out of all sources of this folder.
function(quorvane_library name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main(_[a-z]+)?\\.cpp$")
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC quorvane_options Qt6::Core Threads::Threads ${ARGN})
endfunction()
