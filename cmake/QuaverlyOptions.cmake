# Settings shared by every target: strict Qt, warnings, sanitizers.

option(QUAVERLY_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
set(QUAVERLY_SANITIZE "" CACHE STRING "The sanitizers to build with, as -fsanitize takes them, such as address,undefined")
option(QUAVERLY_FUZZ "Build the fuzzers, which needs Clang" OFF)

add_library(quaverly_options INTERFACE)
target_compile_definitions(quaverly_options INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_FOREACH
  QT_NO_KEYWORDS
  QT_STRICT_ITERATORS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400
  QUAVERLY_VERSION="${PROJECT_VERSION}")
target_compile_options(quaverly_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused
  # Members with an initialiser of their own are meant to be left out of a designated one.
  -Wno-missing-field-initializers
  $<$<BOOL:${QUAVERLY_WARNINGS_AS_ERRORS}>:-Werror>)
if(QUAVERLY_SANITIZE)
  # A program goes on after undefined behaviour otherwise, and its test passes.
  target_compile_options(quaverly_options INTERFACE
    -fsanitize=${QUAVERLY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quaverly_options INTERFACE -fsanitize=${QUAVERLY_SANITIZE})
endif()
if(QUAVERLY_FUZZ)
  target_compile_options(quaverly_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# One static library per folder. Includes are written from the top of the tree ("controller/Published.h"), so that a
# line which breaks the order of the layers can be seen at a glance.
function(quaverly_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE quaverly_options)
endfunction()

# quaverly_npm_packages(FOLDER STAMP FILES... [ARGUMENTS ...])
#
# Installs the npm packages of a lock file in FOLDER, beside the build, so that the sources stay clean, and again only
# when the files change. Where there is no registry to ask, QUAVERLY_NODE_MODULES holds the packages already.
set(QUAVERLY_NODE_MODULES "" CACHE PATH "A node_modules folder with the npm packages; else npm fetches them")
function(quaverly_npm_packages folder stamp)
  cmake_parse_arguments(arg "" "" "FILES;ARGUMENTS" ${ARGN})
  if(QUAVERLY_NODE_MODULES)
    set(install ${CMAKE_COMMAND} -E copy_directory ${QUAVERLY_NODE_MODULES} ${folder}/node_modules)
  else()
    find_program(QUAVERLY_NPM NAMES npm REQUIRED)
    set(install ${CMAKE_COMMAND} -E chdir ${folder} ${CMAKE_COMMAND} -E env npm_config_update_notifier=false
                ${QUAVERLY_NPM} ci ${arg_ARGUMENTS} --no-audit --no-fund --loglevel=error)
  endif()
  add_custom_command(
    OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${CMAKE_COMMAND} -E copy ${arg_FILES} ${folder}
    COMMAND ${install}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${arg_FILES}
    COMMENT "Installing the npm packages of ${folder}"
    VERBATIM)
endfunction()
