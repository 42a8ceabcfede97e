# Fails where one of OBJECTS needs a wide routine of the C or C++ library, or LIBRARY offers one of its own; NM lists
# both. REGEX, the one object with the platform's own wide characters, may need them: it must show the others its entry
# alone.
function(list_names result)
    execute_process(COMMAND ${NM} ${ARGN} OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[A-Za-z0-9_]+(@[^\n]*)?\n" names "${listed}")
    list(TRANSFORM names REPLACE "(@[^\n]*)?\n" "")
    set(${result} "${names}" PARENT_SCOPE)
endfunction()

list_names(names -u ${OBJECTS})
if(NOT names MATCHES "_Zna")  # operator new[]
    message(FATAL_ERROR "this is no list of what the library needs: ${names}")
endif()
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

list_names(shown -g --defined-only ${REGEX})
if(NOT shown MATCHES "^_ZN5regex10matchWhole[A-Za-z0-9_]*$")
    message(FATAL_ERROR "of 32-bit wide characters, but not local: ${shown}")
endif()

list_names(offered -D --defined-only ${LIBRARY})
if(NOT offered MATCHES "9BryString" OR offered MATCHES "_ZN?K?St[^;]*Iw")
    message(FATAL_ERROR "wide templates of the C++ library, or nothing, among: ${offered}")
endif()
