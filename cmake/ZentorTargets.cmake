# Compile settings shared by every target of the project.
add_library(zentor_settings INTERFACE)
target_include_directories(zentor_settings INTERFACE ${PROJECT_SOURCE_DIR}/src)
# Contraction to fused multiply-add is off everywhere: ties between equal stresses decide the order of loading
# pairs, so a formula must give the same bits wherever it is compiled.  No kernel reads errno or traps.
target_compile_options(zentor_settings INTERFACE
  -ffp-contract=off -fno-math-errno -fno-trapping-math
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wimplicit-fallthrough
  -Wconversion -Wno-sign-conversion
  $<$<BOOL:${ZENTOR_WERROR}>:-Werror>)
if(ZENTOR_SANITIZE)
  # The code of the tests is not under test itself: without the checks of undefined behaviour it takes a third less
  # time to compile. The checks hide from GCC what <regex> initialises: its own warning would be about the library.
  target_compile_options(zentor_settings INTERFACE -fsanitize=address -fno-sanitize-recover=all -fno-omit-frame-pointer
                                                   $<$<NOT:$<BOOL:$<TARGET_PROPERTY:ZENTOR_TEST>>>:-fsanitize=undefined>
                                                   $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(zentor_settings INTERFACE -fsanitize=address,undefined)
endif()

# zentor_library(NAME SOURCES... DEPENDS...): a static library of one layer and the layers it may see.
function(zentor_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC zentor_settings ${ARG_DEPENDS})
endfunction()

# zentor_test(NAME SOURCES... DEPENDS...): one GoogleTest program per layer.
function(zentor_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES ZENTOR_TEST ON)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE zentor_settings ${ARG_DEPENDS} GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
endfunction()
