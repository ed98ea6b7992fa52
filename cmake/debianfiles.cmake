# Run by CPack over the installed files of each package, before they are packed: what Debian has in
# other places or forms than cmake --install.

find_program(gzip gzip REQUIRED)

# The same bytes from the same text.
function(compress)
    execute_process(COMMAND ${gzip} -9 -n ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Text in the fields of Debian's files: each line indented, an empty one as a dot.
function(indent text result)
    string(REGEX REPLACE "\n+$" "" text "${text}")
    string(REGEX REPLACE "\n\n" "\n.\n" text "${text}")
    string(REPLACE "\n" "\n " text " ${text}")
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(write_documents folder)
    file(READ ${CPACK_ADEXP_SOURCE_DIR}/LICENSE license)
    string(REGEX MATCH "Copyright \\(c\\) ([^\n]+)\n\n(.*)" matched "${license}")
    set(holder "${CMAKE_MATCH_1}")
    indent("${CMAKE_MATCH_2}" terms)
    file(WRITE ${folder}/copyright
        "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n"
        "Upstream-Name: adexp\n\nFiles: *\nCopyright: ${holder}\nLicense: Expat\n${terms}\n")
    configure_file(${CPACK_ADEXP_SOURCE_DIR}/CHANGELOG.md ${folder}/changelog COPYONLY)
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(WRITE ${folder}/changelog.Debian
        "adexp (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
        "  * Built from the sources; their changes are in changelog.gz.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    compress(${folder}/changelog ${folder}/changelog.Debian)
endfunction()

function(finish_package component)
    string(TOUPPER ${component} id)
    set(package ${CPACK_DEBIAN_${id}_PACKAGE_NAME})
    set(usr ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(share ${usr}/share)

    if(EXISTS ${share}/doc/adexp)
        file(RENAME ${share}/doc/adexp ${share}/doc/${package})
        # They are there as copyright and changelog.
        file(REMOVE ${share}/doc/${package}/LICENSE ${share}/doc/${package}/CHANGELOG.md)
    endif()
    if(EXISTS ${share}/doc/${package}/bindings) # of the Python module: all that is in the package
        file(RENAME ${share}/doc/${package}/bindings/python/README.md ${share}/doc/${package}/README.md)
        file(REMOVE_RECURSE ${share}/doc/${package}/bindings)
    endif()
    file(MAKE_DIRECTORY ${share}/doc/${package})
    write_documents(${share}/doc/${package})

    # A package stays where it is: without the detour over its own place pkg-config knows the folders
    # that every compiler searches.
    file(GLOB pc ${usr}/lib/*/pkgconfig/adexp.pc)
    if(pc)
        file(READ ${pc} text)
        string(REGEX REPLACE "^prefix=[^\n]*" "prefix=/usr" text "${text}")
        file(WRITE ${pc} "${text}")
    endif()
    file(GLOB pages ${share}/man/man*/*)
    if(pages)
        compress(${pages})
    endif()
    if(EXISTS ${share}/zsh/site-functions)
        file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
    endif()
    # One place for all versions of Python 3.
    file(GLOB python ${usr}/lib/python3.*)
    if(python)
        file(MAKE_DIRECTORY ${usr}/lib/python3)
        file(RENAME ${python}/site-packages ${usr}/lib/python3/dist-packages)
        file(REMOVE_RECURSE ${python})
    endif()
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    finish_package(${component})
endforeach()
