if(GROUPTRACKER_WERROR)
  set(grouptracker_errors -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # What the optimiser of GCC 12 guesses about memory has always been false here; the sanitizers
  # look for it.
  set(grouptracker_guesses -Wno-array-bounds -Wno-maybe-uninitialized -Wno-restrict
    -Wno-stringop-overflow -Wno-stringop-overread)
endif()

# grouptracker_options(TARGET): the language, arithmetic and warnings that every target has.
# The arithmetic is fixed so that the same input gives the same bits on every machine.
function(grouptracker_options target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -ffp-contract=off -fno-math-errno -Wall -Wextra -Wpedantic -Wnon-virtual-dtor
    -Woverloaded-virtual ${grouptracker_guesses} ${grouptracker_errors}
    # Where sources are compiled as one, the names of one would shadow those of the next.
    $<$<NOT:$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wshadow>)
endfunction()

# grouptracker_layer(NAME SOURCES ... [LINKS ...] [PRIVATE_LINKS ...]): the static library of one
# folder; headers are included by their path from the root.
function(grouptracker_layer name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  grouptracker_options(${name})
  grouptracker_use_precompiled(${name} precompiled_library)
endfunction()

# grouptracker_late_library(NAME SOURCES ... [LINKS ...]): a library that the program and the plugin load
# when they need it first, from where `LateLibrary` looks for it.
function(grouptracker_late_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} MODULE ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_LINKS})
  grouptracker_options(${name})
  grouptracker_use_precompiled(${name} precompiled_library)
  set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/grouptracker)
  install(TARGETS ${name} LIBRARY DESTINATION lib/grouptracker COMPONENT program)
endfunction()

# grouptracker_precompiled(NAME KIND [HEADERS ...]): a target of the given kind, STATIC or EXECUTABLE,
# that compiles the headers which most sources include; others share the result by
# grouptracker_use_precompiled. Libraries and programs cannot share one, as their code differs.
set(precompiled_folder ${CMAKE_CURRENT_LIST_DIR})
add_library(precompiled_needs INTERFACE)

function(grouptracker_precompiled name kind)
  cmake_parse_arguments(arg "" "" "HEADERS;LINKS" ${ARGN})
  if(kind STREQUAL EXECUTABLE)
    add_executable(${name} ${precompiled_folder}/PrecompiledMain.cpp)
  else()
    add_library(${name} ${kind} ${precompiled_folder}/Precompiled.cpp)
  endif()
  grouptracker_options(${name})
  target_link_libraries(${name} PRIVATE precompiled_needs ${arg_LINKS})
  target_precompile_headers(${name} PRIVATE ${precompiled_folder}/Precompiled.h ${arg_HEADERS})
endfunction()

function(grouptracker_use_precompiled target source)
  target_link_libraries(${target} PRIVATE precompiled_needs)
  target_precompile_headers(${target} REUSE_FROM ${source})
endfunction()
