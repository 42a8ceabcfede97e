# Fails unless the header ALL includes each of HEADERS but itself and the export mark, which comes with any of them.
file(READ ${ALL} text)
foreach(header IN LISTS HEADERS)
    if(NOT header MATCHES "roots/(KelRoots|Export)\\.h" AND NOT text MATCHES "#include <${header}>")
        message(SEND_ERROR "${ALL} lacks ${header}")
    endif()
endforeach()
