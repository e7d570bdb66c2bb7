# How everything of this project is compiled, and how its libraries are made.

include(CheckCXXSourceCompiles)

# Whether one function can be compiled for several processors, with the loader choosing. Sanitizers
# instrument the choosing function before their own start-up has run, and crash.
# So sanitizer builds go without, whatever this finds.
check_cxx_source_compiles("
  __attribute__((target_clones(\"avx2\", \"default\"))) int Choose() { return 0; }
  int main() { return Choose(); }" ZVMATH_HAS_CLONES)

# zvmath_settings(<target>): the flags of every target of the project.
function(zvmath_settings target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_compile_options(${target} PRIVATE
    -fno-fast-math -ffp-contract=off  # a*b + c rounds twice, whatever the project around us sets
    -Wall -Wextra -Wconversion -Wshadow -Wpedantic -Wno-unknown-attributes
    $<$<BOOL:${ZVMATH_WARNINGS_AS_ERRORS}>:-Werror>)
  if(ZVMATH_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${ZVMATH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
    target_link_options(${target} PRIVATE -fsanitize=${ZVMATH_SANITIZE})
  endif()
endfunction()

# zvmath_library(<name> <target>): the installed library <name> from the objects of <name>_objects,
# to be linked as ZVMath::<target>. What it exports stands in <name>.map beside its sources.
function(zvmath_library name target)
  add_library(${name})
  add_library(ZVMath::${target} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${ZVMATH_SOVERSION} EXPORT_NAME ${target})
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:${name}_objects>)
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_link_options(${name} PRIVATE
    -fno-fast-math  # or the library would make every program take subnormal numbers for zero
    -Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/${name}.map -Wl,--no-undefined)
  if(ZVMATH_SANITIZE)
    target_link_options(${name} PRIVATE -fsanitize=${ZVMATH_SANITIZE})
  endif()
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")  # there the loader looks anyway
    set_target_properties(${name} PROPERTIES INSTALL_RPATH $ORIGIN)  # the libraries find each other
  endif()
  set_target_properties(${name} PROPERTIES LINK_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}.map)
endfunction()

# zvmath_objects(<name> <source>...): the objects that library <name> is made of, compiled once.
# Tests link them directly, to reach what the library hides.
function(zvmath_objects name)
  add_library(${name}_objects OBJECT ${ARGN})
  zvmath_settings(${name}_objects)
  set_target_properties(${name}_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()
