# One line declares a module, what it may use, and the check that it uses nothing else:
#
#     bralto_module(Projects  QT Core  USES Base)
#
# The sources are the module's folder. USES names modules that are declared already, so modules
# stand bottom up and no circle can be written. A Qt library that is not named can't be found.

# Modules of the kit lie in BraltoKit/, the others at the top.
function(bralto_module_root name result)
    if(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/BraltoKit/${name})
        set(${result} ${PROJECT_SOURCE_DIR}/BraltoKit PARENT_SCOPE)
    else()
        set(${result} ${PROJECT_SOURCE_DIR} PARENT_SCOPE)
    endif()
endfunction()

# The narrow precompiled header: what nearly every source of a Qt module includes anyway.
function(bralto_precompile target scope_has_widgets)
    set(headers <QByteArray> <QDateTime> <QHash> <QList> <QObject> <QString> <QStringList> <QVariant>
                <algorithm> <functional> <memory> <optional> <string> <utility> <variant> <vector>)
    if(scope_has_widgets)
        list(APPEND headers <QApplication> <QEvent> <QFont> <QLayout> <QPainter> <QWidget>)
    endif()
    target_precompile_headers(${target} PRIVATE ${headers})
endfunction()

function(bralto_module name)
    cmake_parse_arguments(PARSE_ARGV 1 module "" "" "QT;USES;LIBRARIES")

    foreach(used IN LISTS module_USES)
        if(NOT TARGET ${used})
            message(FATAL_ERROR "${name} uses ${used}, which is not declared below it.")
        endif()
    endforeach()

    bralto_module_root(${name} root)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${root}/${name}/*.h ${root}/${name}/*.cpp ${root}/${name}/*.qrc)
    set(widgets OFF)
    if("Widgets" IN_LIST module_QT)
        set(widgets ON)
    endif()
    set(units ${sources})
    list(FILTER units INCLUDE REGEX "\\.cpp$")
    list(TRANSFORM module_QT PREPEND Qt6::)
    if(units STREQUAL "")
        add_library(${name} INTERFACE)
        set(scope INTERFACE)
    else()
        add_library(${name} STATIC ${sources})
        target_compile_options(${name} PRIVATE ${BRALTO_WARNINGS})
        if(module_QT STREQUAL "")
            set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTORCC OFF)
        else()
            target_compile_definitions(${name} PRIVATE QT_NO_CAST_TO_ASCII)
            bralto_precompile(${name} ${widgets})
        endif()
        set(scope PUBLIC)
    endif()
    target_include_directories(${name} ${scope} ${root})
    target_link_libraries(${name} ${scope} ${module_USES} ${module_QT} ${module_LIBRARIES})

    set_property(GLOBAL APPEND PROPERTY BRALTO_MODULES ${name})
    set_property(GLOBAL PROPERTY BRALTO_USES_${name} ${name} ${module_USES})
endfunction()

# One test a module that reads its #include lines. Call it once, after the last module.
function(bralto_check_arrows)
    get_property(modules GLOBAL PROPERTY BRALTO_MODULES)
    foreach(name IN LISTS modules)
        get_property(allowed GLOBAL PROPERTY BRALTO_USES_${name})
        bralto_module_root(${name} root)
        add_test(NAME Arrows.${name}
                 COMMAND ${CMAKE_COMMAND} "-Dmodule=${name}" "-Dallowed=${allowed}"
                         "-Dmodules=${modules}" "-Droot=${root}"
                         -P ${PROJECT_SOURCE_DIR}/cmake/CheckArrows.cmake)
    endforeach()
endfunction()

# A test program of a library that knows no Qt: Tests/<folder>/<name>.cpp.
function(bralto_plain_test path)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "" "USES;NEEDS;LABELS")
    cmake_path(GET path FILENAME name)
    add_executable(${name} ${PROJECT_SOURCE_DIR}/Tests/${path}.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTORCC OFF)
    target_compile_options(${name} PRIVATE ${BRALTO_WARNINGS})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_compile_definitions(${name} PRIVATE BRALTO_FIXTURES="${PROJECT_SOURCE_DIR}/Tests/Fixtures"
                                               BRALTO_BIN="${CMAKE_BINARY_DIR}/bin")
    target_link_libraries(${name} PRIVATE ${test_USES} GTest::gtest_main)
    if(test_NEEDS)
        add_dependencies(${name} ${test_NEEDS})
    endif()
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1 --gtest_output=xml:${CMAKE_BINARY_DIR}/results/${name}.xml)
    set_tests_properties(${name} PROPERTIES LABELS "${test_LABELS}" TIMEOUT 300
        ENVIRONMENT "UBSAN_OPTIONS=print_stacktrace=1")
endfunction()

# The precompiled header that all test programs share. Call it once, before the first test.
function(bralto_test_headers)
    file(WRITE ${CMAKE_BINARY_DIR}/TestHeaders.cpp "")
    add_library(TestHeaders STATIC ${CMAKE_BINARY_DIR}/TestHeaders.cpp)
    target_link_libraries(TestHeaders PRIVATE Qt6::Core GTest::gtest)
    target_compile_options(TestHeaders PRIVATE ${BRALTO_WARNINGS} -fPIE)
    target_precompile_headers(TestHeaders PRIVATE <gtest/gtest.h> ${PROJECT_SOURCE_DIR}/Tests/Support/QtPrinters.h
        <QByteArray> <QDateTime> <QHash> <QList> <QObject>
        <QString> <QStringList> <QTemporaryDir> <QVariant> <functional> <memory> <optional> <variant> <vector>)
endfunction()

# A test program: Tests/<folder>/<name>.cpp against the modules that it names.
#   MAIN widgets|core  a QApplication (offscreen) or a QCoreApplication is there; else plain GoogleTest
#        web           a QApplication that shows pages
#   NEEDS              programs that the test starts, built before it
#   LABELS             for example: slow
function(bralto_test path)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "MAIN" "USES;NEEDS;LABELS")
    cmake_path(GET path FILENAME name)
    set(main "")
    if(test_MAIN)
        set(main ${PROJECT_SOURCE_DIR}/Tests/Support/Main_${test_MAIN}.cpp)
    endif()
    add_executable(${name} ${PROJECT_SOURCE_DIR}/Tests/${path}.cpp ${main})
    # Hardly a test declares an object of its own, and a run of moc for each costs seconds.
    file(STRINGS ${PROJECT_SOURCE_DIR}/Tests/${path}.cpp objects REGEX "Q_OBJECT")
    if(NOT objects)
        set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    endif()
    target_compile_options(${name} PRIVATE ${BRALTO_WARNINGS})
    target_precompile_headers(${name} REUSE_FROM TestHeaders)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_compile_definitions(${name} PRIVATE BRALTO_FIXTURES="${PROJECT_SOURCE_DIR}/Tests/Fixtures"
                                               BRALTO_BIN="${CMAKE_BINARY_DIR}/bin")
    if(test_MAIN)
        target_link_libraries(${name} PRIVATE ${test_USES} GTest::gtest Qt6::Test)
    else()
        target_link_libraries(${name} PRIVATE ${test_USES} GTest::gtest_main)
    endif()
    if(test_NEEDS)
        add_dependencies(${name} ${test_NEEDS})
    endif()
    set(address "")
    set(leaks leaks.supp)
    if(test_MAIN STREQUAL "web")
        set(leaks leaks-web.supp)
        # The engine's library gives back under another type what it took.
        set(address ";ASAN_OPTIONS=new_delete_type_mismatch=0")
    endif()
    # One process a program: starting a sanitized Qt process for each case would cost minutes.
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1 --gtest_output=xml:${CMAKE_BINARY_DIR}/results/${name}.xml)
    set_tests_properties(${name} PROPERTIES LABELS "${test_LABELS}" TIMEOUT 300 ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/Tests/Support/${leaks}:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1${address}")
endfunction()

# A fuzz target: Tests/Fuzz/<name>.cpp with libFuzzer; only under the preset `fuzz`.
function(bralto_fuzz name)
    cmake_parse_arguments(PARSE_ARGV 1 fuzz "" "" "USES")
    if(NOT BRALTO_FUZZ)
        return()
    endif()
    add_executable(${name} ${PROJECT_SOURCE_DIR}/Tests/Fuzz/${name}.cpp)
    target_link_libraries(${name} PRIVATE ${fuzz_USES})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()
