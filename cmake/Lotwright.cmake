# One library per folder: every .cpp in the folder except tests, fuzz targets and benchmarks.
# Tests beside the code (NAME_test.cpp) become one test program per library, registered with ctest.
# Fuzz targets (NAME_fuzz.cpp, defining LLVMFuzzerTestOneInput) always build as a regression program
# that replays tests/fuzz/NAME/ under ctest; with LW_FUZZ and clang they also build as libFuzzer programs.
function(lw_library name)
  cmake_parse_arguments(ARG "" "" "DEPS;TEST_DEPS" ${ARGN})
  file(GLOB srcs CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  list(FILTER srcs EXCLUDE REGEX "_(test|fuzz|bench)\\.cpp$")
  if(srcs)
    add_library(${name} STATIC ${srcs})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  else()
    # A folder whose code has not arrived yet still gives a target others can name.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${ARG_DEPS})
  endif()

  if(LW_BUILD_TESTS)
    file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
    if(tests)
      add_executable(${name}_tests ${tests})
      target_link_libraries(${name}_tests PRIVATE ${name} ${ARG_TEST_DEPS} GTest::gtest GTest::gmock GTest::gtest_main)
      target_compile_definitions(${name}_tests PRIVATE LW_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                                 LW_BINARY_DIR="${PROJECT_BINARY_DIR}")
      gtest_discover_tests(${name}_tests DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                           PROPERTIES ENVIRONMENT "LC_ALL=C.UTF-8")
    endif()
    file(GLOB fuzzers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_fuzz.cpp)
    foreach(f ${fuzzers})
      get_filename_component(fname ${f} NAME_WE)
      add_executable(${fname}_regress ${f} ${PROJECT_SOURCE_DIR}/tests/fuzz/replay_main.cpp)
      target_link_libraries(${fname}_regress PRIVATE ${name})
      add_test(NAME ${fname}_regress COMMAND ${fname}_regress ${PROJECT_SOURCE_DIR}/tests/fuzz/${fname})
      if(LW_FUZZ AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        add_executable(${fname} ${f})
        target_compile_options(${fname} PRIVATE -fsanitize=fuzzer,address,undefined)
        target_link_options(${fname} PRIVATE -fsanitize=fuzzer,address,undefined)
        target_link_libraries(${fname} PRIVATE ${name})
      endif()
    endforeach()
  endif()
endfunction()

# A Google Benchmark program from bench/NAME.cpp, or from SOURCE.
function(lw_bench name)
  cmake_parse_arguments(ARG "" "SOURCE" "DEPS" ${ARGN})
  if(NOT ARG_SOURCE)
    set(ARG_SOURCE ${PROJECT_SOURCE_DIR}/bench/${name}.cpp)
  endif()
  add_executable(${name} ${ARG_SOURCE})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} benchmark::benchmark)
endfunction()
