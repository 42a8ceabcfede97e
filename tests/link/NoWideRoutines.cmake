# Fails where LIBRARY needs a wide routine of the C or C++ library, or offers one of its own; NM lists both.
execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE offered COMMAND_ERROR_IS_FATAL ANY)
if(NOT offered MATCHES " BryString|9BryString" OR offered MATCHES "_ZN?K?St[^\n]*Iw")
    message(FATAL_ERROR "wide templates of the C++ library, or nothing, among:\n${offered}")
endif()
execute_process(COMMAND ${NM} -D -u ${LIBRARY} OUTPUT_VARIABLE needed COMMAND_ERROR_IS_FATAL ANY)
if(NOT needed MATCHES " _Zna")  # operator new[]
    message(FATAL_ERROR "this is no list of what the library needs:\n${needed}")
endif()

string(REGEX MATCHALL "[A-Za-z0-9_]+(@[^\n]*)?\n" names "${needed}")
list(TRANSFORM names REPLACE "(@[^\n]*)?\n" "")
set(wide_names "")
foreach(wide IN ITEMS "wcs[a-z0-9_]*" "wmem[a-z_]*" "wct[a-z]*" "isw[a-z_]*" "tow[a-z_]*" "[a-z0-9_]*w(printf|scanf)"
        "fwide" "btowc" "f?(get|put)w[cs](har)?" "ungetwc" "mbr?towc" "wcr?tomb" "mbsn?r?towcs"
        "_Z[A-Za-z0-9_]*(basic_[a-z]*Iw|char_traitsIw|ctypeIw)[A-Za-z0-9_]*")
    set(matching ${names})
    list(FILTER matching INCLUDE REGEX "^_*${wide}(_chk|_l|_unlocked)?$")
    list(APPEND wide_names ${matching})
endforeach()
if(wide_names)
    message(FATAL_ERROR "made for 32-bit wide characters: ${wide_names}")
endif()
