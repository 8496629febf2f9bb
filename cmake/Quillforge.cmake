# Shared build rules: compiler settings, the two kinds of library, tests.

add_library(quillforge_options INTERFACE)
target_include_directories(quillforge_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(quillforge_options INTERFACE
  QT_DISABLE_DEPRECATED_BEFORE=0x060400
  QT_NO_FOREACH
  QT_STRICT_ITERATORS)
if(MSVC)
  target_compile_options(quillforge_options INTERFACE /W4 /WX /utf-8 /permissive-)
else()
  target_compile_options(quillforge_options INTERFACE -Wall -Wextra -Wpedantic
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
endif()
if(QUILLFORGE_SANITIZERS)
  target_compile_options(quillforge_options INTERFACE -fsanitize=${QUILLFORGE_SANITIZERS}
    -fno-omit-frame-pointer -g -O1)
  target_link_options(quillforge_options INTERFACE -fsanitize=${QUILLFORGE_SANITIZERS})
endif()
if(QUILLFORGE_COVERAGE)
  target_compile_options(quillforge_options INTERFACE --coverage -O0)
  target_link_options(quillforge_options INTERFACE --coverage)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Precompiled headers reach the cache only with these liberties.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    ${CCACHE_PROGRAM})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options(-Xclang -fno-pch-timestamp)
  else()
    add_compile_options(-fpch-preprocess)
  endif()
endif()

# quillforge_core_library(NAME SOURCES ... [LINKS ...])
# A library that can't see a widget: Qt Core, Sql and Xml only.
function(quillforge_core_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC quillforge_options Qt6::Core Qt6::Sql Qt6::Xml ${ARG_LINKS})
  target_precompile_headers(${name} REUSE_FROM quillforge_core_pch)
endfunction()

# quillforge_gui_library(NAME SOURCES ... [LINKS ...])
function(quillforge_gui_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC quillforge_options
    Qt6::Core Qt6::Sql Qt6::Xml Qt6::Gui Qt6::Widgets ${ARG_LINKS})
  target_precompile_headers(${name} REUSE_FROM quillforge_gui_pch)
endfunction()

# quillforge_test(NAME SOURCES ... [LINKS ...] [GUI])
# One Qt Test executable, run by CTest without a display and with settings and data folders of
# its own, so that a test never reads or writes those of the user.
function(quillforge_test name)
  cmake_parse_arguments(ARG "GUI" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/bin)
  target_link_libraries(${name} PRIVATE quillforge_options
    Qt6::Core Qt6::Sql Qt6::Xml Qt6::Test ${ARG_LINKS})
  if(ARG_GUI)
    target_link_libraries(${name} PRIVATE Qt6::Gui Qt6::Widgets)
    target_precompile_headers(${name} REUSE_FROM quillforge_gui_test_pch)
  else()
    target_precompile_headers(${name} REUSE_FROM quillforge_test_pch)
  endif()
  target_compile_definitions(${name} PRIVATE
    QUILLFORGE_SOURCE_DIR="${PROJECT_SOURCE_DIR}" QUILLFORGE_BINARY_DIR="${CMAKE_BINARY_DIR}")
  # Tests name the fields of a record that matter and leave the rest as it is.
  target_compile_options(${name} PRIVATE -Wno-missing-field-initializers)
  add_test(NAME ${name} COMMAND ${name})
  set(home ${CMAKE_BINARY_DIR}/tests/home/${name})
  file(MAKE_DIRECTORY ${home})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen;HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;XDG_RUNTIME_DIR=${home};LC_ALL=C.UTF-8")
endfunction()
