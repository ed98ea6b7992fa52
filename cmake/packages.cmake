# The Debian packages, made by scripts/package: one for each component of cmake/install.cmake.
set(ADEXP_MAINTAINER "The adexp authors <adexp@adexp.invalid>" CACHE STRING
    "Who answers for the Debian packages, as NAME <ADDRESS>")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT ${ADEXP_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development python tools)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debianfiles.cmake)
set(CPACK_ADEXP_SOURCE_DIR ${PROJECT_SOURCE_DIR})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each description below begins with its own

set(library_package libadexp${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
"converter of air-traffic messages from ADEXP to XML - library
libadexp converts messages of air-traffic services in ADEXP, the format of
keywords and fields, into XML documents. Rule files say what a message may
contain; those for the published messages are built in.")
# Which package a program depends on that was linked to the library, and that the linker's cache is to
# be renewed.
file(CONFIGURE OUTPUT debian/shlibs
    CONTENT "libadexp ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION})\n")
file(CONFIGURE OUTPUT debian/triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/debian/shlibs ${PROJECT_BINARY_DIR}/debian/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libadexp-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${library_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"converter of air-traffic messages from ADEXP to XML - development files
Header, manual page and examples of libadexp, and what CMake and
pkg-config need to find it.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-adexp)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.9), python3:any, ${library_package} (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_LIST_DIR}/python/postinst ${CMAKE_CURRENT_LIST_DIR}/python/prerm)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
"converter of air-traffic messages from ADEXP to XML - Python module
The module adexp converts messages of air-traffic services in ADEXP, the
format of keywords and fields, into XML documents, by libadexp. With it
comes an example.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME adexp-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"converter of air-traffic messages from ADEXP to XML - command
The command adexp converts messages of air-traffic services in ADEXP, the
format of keywords and fields, into XML documents, and shows how messages
and rule files are understood. With it come the rule files for the published
messages, their reference, schemas and sample messages.")

include(CPack)
