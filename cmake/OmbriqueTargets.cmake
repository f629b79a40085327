# What every target of the project has in common.

# The warnings that GCC and Clang both build without.
function(ombrique_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                             $<$<BOOL:${OMBRIQUE_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()

# ombrique_library(NAME HEADERS h... [INLINES inl...] [SOURCES cpp...] [LINKS target...] [PRIVATE_LINKS target...]
#                  [INSTALLED])
# A static library (an interface library where there are no sources) whose headers are included from the root of the
# project, and are each compiled alone by the header verification; INLINES are parts that headers include. With
# INSTALLED it is for other projects too, as Ombrique::NAME, and so must be the libraries that it links.
function(ombrique_library name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "INSTALLED" "" "HEADERS;INLINES;SOURCES;LINKS;PRIVATE_LINKS")
    if(ARG_SOURCES)
        add_library(${name} STATIC ${ARG_SOURCES})
        set(scope PUBLIC)
        target_link_libraries(${name} PRIVATE ${ARG_PRIVATE_LINKS})
        # libGL, for one, is the name of another library.
        set_target_properties(${name} PROPERTIES OUTPUT_NAME Ombrique${name})
        ombrique_warnings(${name})
    else()
        add_library(${name} INTERFACE)
        set(scope INTERFACE)
    endif()
    target_sources(${name}
        ${scope} FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS}
        ${scope} FILE_SET inlines TYPE HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_INLINES})
    set_target_properties(${name} PROPERTIES INTERFACE_HEADER_SETS_TO_VERIFY HEADERS)
    target_link_libraries(${name} ${scope} ${ARG_LINKS})
    target_compile_features(${name} ${scope} cxx_std_20)
    add_library(Ombrique::${name} ALIAS ${name})
    if(ARG_INSTALLED)
        install(TARGETS ${name} EXPORT OmbriqueTargets
            ARCHIVE COMPONENT development
            FILE_SET HEADERS DESTINATION ${OMBRIQUE_INCLUDE_DIR} COMPONENT development
            FILE_SET inlines DESTINATION ${OMBRIQUE_INCLUDE_DIR} COMPONENT development)
    endif()
endfunction()

# ombrique_bundle_host(TARGET FOLDER)
# Tells TARGET, which is installed in FOLDER, where the bundle lies as seen from there, for bundleLocation(), and which
# version of it belongs to it.
function(ombrique_bundle_host target folder)
    include(${PROJECT_SOURCE_DIR}/Plugins/Contrast/Identity.cmake)
    file(RELATIVE_PATH built ${CMAKE_CURRENT_BINARY_DIR} ${PROJECT_BINARY_DIR}/Plugins/Contrast)
    file(RELATIVE_PATH installed /${folder} /${OMBRIQUE_BUNDLE_DIR})
    target_compile_definitions(${target} PRIVATE
        OMBRIQUE_BUNDLE_BUILT="${built}"
        OMBRIQUE_BUNDLE_INSTALLED="${installed}"
        OMBRIQUE_BUNDLE_IDENTIFIER="${OMBRIQUE_EFFECT_IDENTIFIER}"
        OMBRIQUE_BUNDLE_VERSION="${OMBRIQUE_EFFECT_VERSION_MAJOR}.${OMBRIQUE_EFFECT_VERSION_MINOR}")
endfunction()

# ombrique_test(NAME LABEL plain|opengl|threads|tools SOURCES cpp... [LINKS target...])
# A GoogleTest program, each of whose tests CTest knows by itself under LABEL: plain runs without OpenGL, opengl needs a
# driver, threads does so on several threads, tools runs other programs. ThreadSanitizer watches plain and threads.
# ./test leaves out what is labelled release.
function(ombrique_test name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "LABEL" "SOURCES;LINKS")
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest_main)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    ombrique_warnings(${name})
    gtest_discover_tests(${name} TEST_LIST ${name}Names PROPERTIES LABELS ${ARG_LABEL} TIMEOUT 300)
    # The sanitizers read these; other builds ignore them. Not a property above: the first of a list alone gets through.
    set(suppressions ${PROJECT_SOURCE_DIR}/Tests/Suppressions)
    set(environment LSAN_OPTIONS=suppressions=${suppressions}/lsan.supp:print_suppressions=0
                    TSAN_OPTIONS=suppressions=${suppressions}/tsan.supp
                    UBSAN_OPTIONS=suppressions=${suppressions}/ubsan.supp:print_stacktrace=1)
    set(include ${CMAKE_CURRENT_BINARY_DIR}/${name}Environment.cmake)
    file(CONFIGURE OUTPUT ${include} @ONLY CONTENT [[
if(@name@Names)
    set_tests_properties(${@name@Names} PROPERTIES ENVIRONMENT "@environment@")
endif()
]])
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${include})
endfunction()
