# Building and registering tests.
#
# xelt_add_test(NAME name SOURCES file... LABEL unit|pixel|thread|package
#               [GL es|desktop|both|none] [WHITEBOX] [OWN_MAIN] [SCALES 1 2] [SHARDS n]
#               [TIMEOUT seconds] [LIBRARIES lib...] [ENVIRONMENT VAR=value...])
#
#   One executable `name`, put into XELT_TEST_BIN_DIR beside the recording core library, and for each GL
#   flavour, scale factor and shard one CTest entry: name.es, name.desktop, name.es.scale2, name.es.1of4 ...
#   GL none (the default) runs once, without a display and without a QApplication; the flavours run on a
#   display of their own.
#   WHITEBOX links the library's objects instead of the shared library, to reach what is not exported.
#   OWN_MAIN leaves out the main of tests/support.
#   Sanitizer builds have the first scale only.
#   TIMEOUT is for an ordinary build; sanitizer builds, and programs that are run by another
#   system than their own, get six times as long.
#   What windows-excluded.txt names is left out where that counts.
#
# xelt_test_environment(VARIABLE [es|desktop|none] [scale])
#   The list of environment settings that such an entry gets, for tests registered by hand with add_test.

set(XELT_TEST_BIN_DIR ${PROJECT_BINARY_DIR}/tests/bin)
set(XELT_TEST_ARTIFACT_DIR ${PROJECT_BINARY_DIR}/tests/artifacts)

if(WIN32)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/windows-excluded.txt)
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/windows-excluded.txt XELT_EXCLUDED REGEX "^[^#]")
else()
  set(XELT_EXCLUDED "")
endif()

# The reason why something is left out on this system; empty when it is not.
function(xelt_excluded VARIABLE WHAT)
  set(${VARIABLE} "" PARENT_SCOPE)
  foreach(line IN LISTS XELT_EXCLUDED)
    if(line MATCHES "^([^:]*): (.*)$" AND CMAKE_MATCH_1 STREQUAL WHAT)
      set(${VARIABLE} "${CMAKE_MATCH_2}" PARENT_SCOPE)
    endif()
  endforeach()
endfunction()

# A GoogleTest filter of a program's tests that are left out on this system; empty when there are none.
function(_xelt_excluded_tests VARIABLE PROGRAM)
  set(tests "")
  foreach(line IN LISTS XELT_EXCLUDED)
    if(line MATCHES "^${PROGRAM} ([^:]*): ")
      list(APPEND tests ${CMAKE_MATCH_1})
    endif()
  endforeach()
  list(JOIN tests ":" tests)
  set(${VARIABLE} "${tests}" PARENT_SCOPE)
endfunction()

# The settings of an entry, with what is left out of its tests added to the filter among them.
function(_xelt_exclude_tests VARIABLE PROGRAM FLAVOUR)
  set(settings "${ARGN}")
  _xelt_excluded_tests(everywhere ${PROGRAM})
  _xelt_excluded_tests(here ${PROGRAM}.${FLAVOUR})
  set(excluded ${everywhere} ${here})
  list(JOIN excluded ":" excluded)
  if(excluded)
    message(STATUS "Left out on this system: ${PROGRAM}, ${FLAVOUR}: ${excluded}")
    if(NOT settings MATCHES "GTEST_FILTER=")
      list(APPEND settings "GTEST_FILTER=-${excluded}")
    elseif(settings MATCHES "GTEST_FILTER=[^;]*-")
      string(REGEX REPLACE "(GTEST_FILTER=[^;]*)" "\\1:${excluded}" settings "${settings}")
    else()
      string(REGEX REPLACE "(GTEST_FILTER=[^;]*)" "\\1-${excluded}" settings "${settings}")
    endif()
  endif()
  set(${VARIABLE} "${settings}" PARENT_SCOPE)
endfunction()

function(xelt_test_environment VARIABLE FLAVOUR)
  set(support ${PROJECT_SOURCE_DIR}/tests/support)
  set(scale "${ARGN}")
  if(NOT scale)
    set(scale 1)
  endif()
  set(environment
    "XELT_TEST_GL=${FLAVOUR}"
    "XELT_TEST_SCALE=${scale}"
    "XELT_TEST_ARTIFACTS=${XELT_TEST_ARTIFACT_DIR}/${FLAVOUR}-scale${scale}"
    "QT_SCALE_FACTOR=${scale}"
    "QT_LOGGING_RULES=*.debug=false")
  if(WIN32)
    list(APPEND environment "QT_QPA_PLATFORM=windows")
  else()
    list(APPEND environment "QT_QPA_PLATFORM=xcb" "NO_AT_BRIDGE=1" "LIBGL_ALWAYS_SOFTWARE=1")
  endif()
  if(WIN32 AND FLAVOUR STREQUAL "es")
    list(APPEND environment "QT_OPENGL=angle")
  elseif(WIN32 AND FLAVOUR STREQUAL "desktop")
    list(APPEND environment "QT_OPENGL=desktop")
  elseif(FLAVOUR STREQUAL "es")
    list(APPEND environment "QT_XCB_GL_INTEGRATION=xcb_egl")
  elseif(FLAVOUR STREQUAL "desktop")
    list(APPEND environment "QT_XCB_GL_INTEGRATION=xcb_glx")
  endif()
  if(XELT_SANITIZE STREQUAL "address")
    list(APPEND environment
      "ASAN_OPTIONS=allocator_may_return_null=1:detect_stack_use_after_return=1"
      "LSAN_OPTIONS=suppressions=${support}/lsan.supp:print_suppressions=0"
      "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1:suppressions=${support}/ubsan.supp")
  elseif(XELT_SANITIZE STREQUAL "thread")
    list(APPEND environment
      "TSAN_OPTIONS=suppressions=${support}/tsan_suppressions.txt:allocator_may_return_null=1:second_deadlock_stack=1:history_size=4:print_suppressions=0")
  endif()
  set(${VARIABLE} "${environment}" PARENT_SCOPE)
endfunction()

function(_xelt_register_test NAME ENTRY FLAVOUR LABEL TIMEOUT ENVIRONMENT)
  # A target's own name stands for its file, with the emulator in front where there is one.
  set(command ${NAME})
  if(NOT FLAVOUR STREQUAL "none" AND NOT WIN32)
    set(command ${PROJECT_SOURCE_DIR}/tests/support/on-own-display.sh $<TARGET_FILE:${NAME}>)
  endif()
  add_test(NAME ${ENTRY} COMMAND ${command} WORKING_DIRECTORY ${XELT_TEST_BIN_DIR})
  set_tests_properties(${ENTRY} PROPERTIES LABELS ${LABEL} TIMEOUT ${TIMEOUT} ENVIRONMENT "${ENVIRONMENT}")
endfunction()

function(xelt_add_test)
  cmake_parse_arguments(ARG "WHITEBOX;OWN_MAIN" "NAME;LABEL;GL;TIMEOUT;SHARDS"
                        "SOURCES;SCALES;LIBRARIES;ENVIRONMENT" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS OR NOT ARG_NAME OR NOT ARG_SOURCES OR NOT ARG_LABEL)
    message(FATAL_ERROR "xelt_add_test: wrong arguments: ${ARGN}")
  endif()
  foreach(pair GL=none TIMEOUT=120 SHARDS=1 SCALES=1)
    string(REPLACE "=" ";" pair ${pair})
    list(GET pair 0 key)
    if(NOT ARG_${key})
      list(GET pair 1 ARG_${key})
    endif()
  endforeach()

  xelt_excluded(reason ${ARG_NAME})
  if(reason)
    message(STATUS "Left out on this system: ${ARG_NAME}: ${reason}")
    return()
  endif()

  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE xelt_build_flags ${ARG_LIBRARIES} XeltTestSupport)
  if(NOT ARG_OWN_MAIN)
    target_link_libraries(${ARG_NAME} PRIVATE XeltTestMain)
  endif()
  if(ARG_WHITEBOX)
    target_link_libraries(${ARG_NAME} PRIVATE XeltRenderObjects)
  else()
    target_link_libraries(${ARG_NAME} PRIVATE XeltRender::XeltRender)
  endif()
  if(TARGET XeltTsanQt)
    target_sources(${ARG_NAME} PRIVATE $<TARGET_OBJECTS:XeltTsanQt>)
  endif()
  if(TARGET XeltKeptModules)
    target_sources(${ARG_NAME} PRIVATE $<TARGET_OBJECTS:XeltKeptModules>)
  endif()
  set_target_properties(${ARG_NAME} PROPERTIES
    AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY ${XELT_TEST_BIN_DIR})
  add_dependencies(${ARG_NAME} XeltRecordingCore)

  # xelt_thread_tests and the like build all tests of a label and nothing more.
  if(NOT TARGET xelt_${ARG_LABEL}_tests)
    add_custom_target(xelt_${ARG_LABEL}_tests)
  endif()
  add_dependencies(xelt_${ARG_LABEL}_tests ${ARG_NAME})

  if(XELT_SANITIZE)
    # Another scale is other numbers on the same paths: sanitizers see one.
    list(GET ARG_SCALES 0 ARG_SCALES)
  endif()
  if(XELT_SANITIZE OR CMAKE_CROSSCOMPILING)
    math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * 6")
  endif()
  if(ARG_GL STREQUAL "both")
    set(ARG_GL es desktop)
  endif()
  foreach(flavour IN LISTS ARG_GL)
    xelt_excluded(reason ${ARG_NAME}.${flavour})
    if(reason)
      message(STATUS "Left out on this system: ${ARG_NAME}.${flavour}: ${reason}")
      continue()
    endif()
    _xelt_exclude_tests(settings ${ARG_NAME} ${flavour} ${ARG_ENVIRONMENT})
    foreach(scale IN LISTS ARG_SCALES)
      xelt_test_environment(environment ${flavour} ${scale})
      set(entry ${ARG_NAME})
      if(NOT flavour STREQUAL "none")
        string(APPEND entry ".${flavour}")
      endif()
      if(NOT scale EQUAL 1)
        string(APPEND entry ".scale${scale}")
      endif()
      foreach(shard RANGE 1 ${ARG_SHARDS})
        set(shardEntry ${entry})
        set(shardEnvironment ${environment} ${settings})
        if(ARG_SHARDS GREATER 1)
          math(EXPR index "${shard} - 1")
          string(APPEND shardEntry ".${shard}of${ARG_SHARDS}")
          list(APPEND shardEnvironment "GTEST_TOTAL_SHARDS=${ARG_SHARDS}" "GTEST_SHARD_INDEX=${index}")
        endif()
        _xelt_register_test(${ARG_NAME} ${shardEntry} ${flavour} ${ARG_LABEL} ${ARG_TIMEOUT} "${shardEnvironment}")
      endforeach()
    endforeach()
  endforeach()
endfunction()
