# grouptracker_options(TARGET): the language, arithmetic and warnings that every target has.
# The arithmetic is fixed so that the same input gives the same bits on every machine.
function(grouptracker_options target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -ffp-contract=off -fno-math-errno -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual $<$<BOOL:${GROUPTRACKER_WERROR}>:-Werror>)
endfunction()

# grouptracker_layer(NAME SOURCES ... [LINKS ...] [PRIVATE_LINKS ...]): the static library of one
# folder; its headers are included by name without a path.
function(grouptracker_layer name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  grouptracker_options(${name})
endfunction()
