# ql240_add_library(name SOURCES … [PUBLIC …] [PRIVATE …]): the static library of a folder under src/.
function(ql240_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()

# ql240_test(name SOURCES … LIBRARIES … [LABELS …] [TIMEOUT seconds] [ENVIRONMENT …]): one Qt Test program, which
# CTest runs without a display, with fixed locale, time zone, fonts and home folders.
function(ql240_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} Qt6::Test ql240_sanitizing)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/support/run_test.sh $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}" ENVIRONMENT "${ARG_ENVIRONMENT}")
endfunction()

# ql240_desktop_test(name desktop…): also runs the test program `name` on real desktops, x11 or wayland, as
# name_<desktop>; skipped where these are not installed.
function(ql240_desktop_test name)
    foreach(desktop ${ARGN})
        add_test(NAME ${name}_${desktop}
            COMMAND ${PROJECT_SOURCE_DIR}/tests/support/run_on_desktop.sh ${desktop} $<TARGET_FILE:${name}>)
        set_tests_properties(${name}_${desktop} PROPERTIES TIMEOUT 180 SKIP_RETURN_CODE 77 LABELS desktop)
    endforeach()
endfunction()
