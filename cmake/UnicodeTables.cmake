# The emulator's tables of scalar properties, made at build time from the system's Unicode data.
set(BRALTO_UNICODE_DATA /usr/share/unicode CACHE PATH "The files of the Unicode Character Database")

function(bralto_unicode_tables module)
    foreach(name UnicodeData.txt EastAsianWidth.txt auxiliary/GraphemeBreakProperty.txt
                 auxiliary/WordBreakProperty.txt emoji/emoji-data.txt emoji/emoji-variation-sequences.txt)
        list(APPEND data ${BRALTO_UNICODE_DATA}/${name})
        if(NOT EXISTS ${BRALTO_UNICODE_DATA}/${name})
            message(FATAL_ERROR "${BRALTO_UNICODE_DATA}/${name} is missing: install unicode-data.")
        endif()
    endforeach()

    add_executable(unicode-tables ${PROJECT_SOURCE_DIR}/Tools/UnicodeTables/main.cpp)
    set_target_properties(unicode-tables PROPERTIES AUTOMOC OFF AUTORCC OFF)
    target_compile_options(unicode-tables PRIVATE ${BRALTO_WARNINGS})

    set(tables ${CMAKE_BINARY_DIR}/UnicodeTables.cpp)
    add_custom_command(OUTPUT ${tables}
        COMMAND unicode-tables ${BRALTO_UNICODE_DATA} ${tables}
        DEPENDS unicode-tables ${data}
        COMMENT "Making the Unicode tables" VERBATIM)
    target_sources(${module} PRIVATE ${tables})
endfunction()
