# What every target of the project shares: warnings, which are errors where QUORVANE_STRICT asks for
# it (a newer compiler may know more of them), one include root, Qt text without
# implicit conversions from narrow strings. Some libraries ask for -pthread; a precompiled header
# serves only those who all have it, or all have not.
add_library(quorvane_options INTERFACE)
target_compile_options(quorvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
  -Wimplicit-fallthrough $<$<BOOL:${QUORVANE_STRICT}>:-Werror> -pthread)
target_compile_definitions(quorvane_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QUORVANE_VERSION="${PROJECT_VERSION}")
target_include_directories(quorvane_options INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})

# The headers that nearly every source reads, compiled once: by the library that all others stand on,
# and with the test framework by the tests' support library.
set(quorvane_common_headers
  <QByteArray> <QJsonArray> <QJsonDocument> <QJsonObject> <QRegularExpression> <QString> <QStringList>
  <algorithm> <atomic> <chrono> <condition_variable> <filesystem> <functional> <map> <memory> <mutex>
  <optional> <set> <span> <stop_token> <thread> <utility> <vector>)

# quorvane_library(NAME [other libraries...]): one static library out of all sources of this folder.
function(quorvane_library name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main(_[a-z]+)?\\.cpp$")
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC quorvane_options Qt6::Core Threads::Threads ${ARGN})
  if(name STREQUAL quorvane_foundation)
    target_precompile_headers(${name} PRIVATE ${quorvane_common_headers})
  else()
    target_precompile_headers(${name} REUSE_FROM quorvane_foundation)
  endif()
endfunction()
