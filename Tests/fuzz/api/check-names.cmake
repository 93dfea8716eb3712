# SPDX-License-Identifier: Apache-2.0
# Fails when an entry point in EXPORTS stands in none of the CHAPTERS' tables.
set(tables "")
foreach(chapter IN LISTS CHAPTERS)
    file(READ "${chapter}" text)
    string(APPEND tables "${text}")
endforeach()
file(STRINGS "${EXPORTS}" names)
foreach(name IN LISTS names)
    string(FIND "${tables}" "{\"${name}\", " found)
    if(found LESS 0)
        message(SEND_ERROR "no chapter of the api fuzz target calls ${name}")
    endif()
endforeach()
