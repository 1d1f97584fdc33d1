# The house in CMake: one static library per room, which sees only the rooms that it names.

add_library(zek_warnungen INTERFACE)
target_compile_options(zek_warnungen INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# All test programs of a build, and all of its benchmarks; the default target builds neither.
add_custom_target(tests)
add_custom_target(benchmarks)

# zek_raum(NAME [UNTER room...] [QT module...]): library zek_NAME of all sources in this folder. Its headers are linked
# into an include folder of its own, and a target sees the folders of the rooms that it names, and of those under them:
# an include that points up doesn't build.
function(zek_raum name)
  cmake_parse_arguments(R "" "" "UNTER;QT" ${ARGN})
  file(GLOB quellen CONFIGURE_DEPENDS *.cpp *.h)
  add_library(zek_${name} STATIC ${quellen})
  set_target_properties(zek_${name} PROPERTIES LINKER_LANGUAGE CXX)
  file(RELATIVE_PATH ort ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  string(REGEX REPLACE "^(src|tests)/" "" ort ${ort})
  set(einblick ${PROJECT_BINARY_DIR}/rooms/${name})
  file(REMOVE_RECURSE ${einblick})
  file(MAKE_DIRECTORY ${einblick}/${ort})
  foreach(quelle ${quellen})
    if(quelle MATCHES "/([^/]+\\.h)$")
      file(CREATE_LINK ${quelle} ${einblick}/${ort}/${CMAKE_MATCH_1} SYMBOLIC)
    endif()
  endforeach()
  target_include_directories(zek_${name} PUBLIC ${einblick})
  target_link_libraries(zek_${name} PRIVATE zek_warnungen)
  foreach(unter ${R_UNTER})
    target_link_libraries(zek_${name} PUBLIC zek_${unter})
  endforeach()
  foreach(modul ${R_QT})
    target_link_libraries(zek_${name} PUBLIC Qt6::${modul})
  endforeach()
endfunction()

# The worlds that tests live in are optimised in every build: months of virtual time go by in them.
function(zek_welt name)
  if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_options(zek_${name} PRIVATE -O1)
  endif()
endfunction()

# zek_test(NAME room... [SCHERBEN n] [OHNE_VORKOPF]): test_NAME of all sources in this folder, run as n shards. Test code
# isn't optimised, also where the product is. It has the precompiled header of the engine's tests; programs that use Qt
# can't, since Qt brings compiler options of its own.
function(zek_test name)
  cmake_parse_arguments(T "OHNE_VORKOPF" "SCHERBEN" "" ${ARGN})
  file(GLOB quellen CONFIGURE_DEPENDS *.cpp *.h)
  add_executable(test_${name} EXCLUDE_FROM_ALL ${quellen})
  add_dependencies(tests test_${name})
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_options(test_${name} PRIVATE ${ZEK_TEST_OPTIONS})
  target_link_libraries(test_${name} PRIVATE zek_warnungen zek_hilfen GTest::gmock ${T_UNPARSED_ARGUMENTS})
  if(ZEK_PCH AND NOT T_OHNE_VORKOPF)
    target_precompile_headers(test_${name} REUSE_FROM zek_vorkopf)
  endif()
  if(NOT T_SCHERBEN)
    set(T_SCHERBEN 1)
  endif()
  math(EXPR letzte "${T_SCHERBEN} - 1")
  foreach(i RANGE ${letzte})
    add_test(NAME ${name}.${i} COMMAND test_${name} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
    set_tests_properties(${name}.${i} PROPERTIES TIMEOUT 600
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${T_SCHERBEN};GTEST_SHARD_INDEX=${i};QT_QPA_PLATFORM=offscreen")
  endforeach()
endfunction()
