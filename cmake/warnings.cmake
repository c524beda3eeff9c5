# The warning flags of every C and C++ target of the project: the library, the
# binding, the tests, the tools, the benchmarks and the fuzz targets. gcc and
# clang both take this set. -Werror only with TQOMACP_WERROR (on in CI and in
# the presets), so a newer compiler's new warning cannot break an app's build.
add_library(tqomacp_warnings INTERFACE)
target_compile_options(tqomacp_warnings INTERFACE
  -Wall -Wextra -Wshadow -Wformat=2 -Wno-format-nonliteral)
# gcc 12 at -O3 (Release) warns falsely that std::string's inserts and
# concatenations copy overlapping memory (GCC bugs 105329 and 105651): no
# -Wrestrict for C++ there.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tqomacp_warnings INTERFACE
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CONFIG:Release>>:-Wno-restrict>)
endif()
if(TQOMACP_WERROR)
  target_compile_options(tqomacp_warnings INTERFACE -Werror)
endif()

# tqomacp_warn_all(<dir>): links tqomacp_warnings into every compiled target
# defined in <dir> and below, called once after the last add_subdirectory().
# Folders outside the source tree (GoogleTest built from /usr/src in the cross
# build) are third-party code and keep their own flags.
function(tqomacp_warn_all dir)
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${targets})
    get_target_property(type ${target} TYPE)
    if(type MATCHES "^(EXECUTABLE|STATIC_LIBRARY|SHARED_LIBRARY|MODULE_LIBRARY|OBJECT_LIBRARY)$")
      target_link_libraries(${target} PRIVATE tqomacp_warnings)
    endif()
  endforeach()
  get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(sub ${subdirs})
    string(FIND "${sub}/" "${PROJECT_SOURCE_DIR}/" at)
    if(at EQUAL 0)
      tqomacp_warn_all(${sub})
    endif()
  endforeach()
endfunction()
