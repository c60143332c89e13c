# The libFuzzer target of the RTF reader, built with clang when KVRTB_BUILD_FUZZ is on, and run
# for a bounded time as a test of its own (seeded with the RTF corpus).
if(KVRTB_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "KVRTB_BUILD_FUZZ needs clang as the C++ compiler (CMAKE_CXX_COMPILER=clang++)")
  endif()
  file(GLOB KVRTB_RTF_FUZZ_SOURCES ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/rtf/*.cpp)
  add_executable(fuzz_rtfreader ${CMAKE_CURRENT_LIST_DIR}/fuzz/fuzz_rtfreader.cpp ${KVRTB_RTF_FUZZ_SOURCES}
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/formatmapping.cpp
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/listmarkers.cpp
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/drawnformats.cpp
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/lettershadows.cpp
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/paragraphborders.cpp
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/surface/tableaders.cpp
    ${CMAKE_SOURCE_DIR}/src/kvrichtextbox/core/colour.cpp)
  target_include_directories(fuzz_rtfreader PRIVATE ${CMAKE_SOURCE_DIR}/src/kvrichtextbox)
  target_compile_options(fuzz_rtfreader PRIVATE -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined)
  target_link_options(fuzz_rtfreader PRIVATE -fsanitize=fuzzer,address,undefined)
  target_link_libraries(fuzz_rtfreader PRIVATE Qt6::Core Qt6::Gui Qt6::Widgets)
  set(KVRTB_FUZZ_SECONDS 60 CACHE STRING "How long the fuzz test runs")
  # A fixed seed makes the test's run repeatable; fuzz with other seeds by hand to explore.
  set(KVRTB_FUZZ_SEED 1 CACHE STRING "Seed of the fuzz test's run")
  # New inputs go to the first folder (in the build tree); the shared corpus only seeds.
  file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/rtf_fuzz_corpus)
  add_test(NAME rtf_fuzz
    COMMAND fuzz_rtfreader -seed=${KVRTB_FUZZ_SEED} -max_total_time=${KVRTB_FUZZ_SECONDS} -max_len=65536 -timeout=10
            -rss_limit_mb=4096 ${CMAKE_CURRENT_BINARY_DIR}/rtf_fuzz_corpus ${KVRTB_CORPORA_DIR}/rtf
            ${CMAKE_CURRENT_LIST_DIR}/fuzz/regressions)
  set_tests_properties(rtf_fuzz PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0"
    TIMEOUT 600)
endif()
