# grouptracker_allocator: for programs that make and free many small records, such as mobiles, links and
# nodes; the C library's allocator spreads these over the memory, so that every walk waits for it. Of no
# use to a sanitizer, which has to have an allocator of its own.
add_library(grouptracker_allocator INTERFACE)
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  find_library(JEMALLOC_LIBRARY jemalloc REQUIRED)
  target_link_libraries(grouptracker_allocator INTERFACE ${JEMALLOC_LIBRARY})
endif()
