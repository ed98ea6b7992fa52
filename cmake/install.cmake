# What cmake --install puts where. Which of it is in which Debian package, debian/*.install say.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/adexp)
set(data_dir ${CMAKE_INSTALL_DATADIR}/adexp)

# The library, for CMake and for pkg-config
install(TARGETS adexp EXPORT adexp
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES include/adexp.h include/adexp.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT adexp NAMESPACE adexp:: FILE adexpConfig.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/adexpConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/adexpConfigVersion.cmake DESTINATION ${package_dir})

# In adexp.pc the prefix is found from the place of the file, so the installed tree can be moved. An
# install folder that was given as an absolute path stays as it is.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
cmake_path(NORMAL_PATH pc_prefix)
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_libdir ${CMAKE_INSTALL_LIBDIR})
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
configure_file(cmake/adexp.pc.in adexp.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/adexp.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The Python module. Its folder depends on the prefix, which is known when installing.
install(CODE "
    execute_process(
        COMMAND \"${Python3_EXECUTABLE}\" -B \"${PROJECT_SOURCE_DIR}/cmake/pythonfolder.py\"
            \"\${CMAKE_INSTALL_PREFIX}\"
        OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(INSTALL \"${PROJECT_SOURCE_DIR}/bindings/python/adexp\"
        DESTINATION \"\${CMAKE_INSTALL_PREFIX}/\${folder}\" PATTERN __pycache__ EXCLUDE)")
install(FILES bindings/python/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/bindings/python)

# The command
install(TARGETS adexp_command DESTINATION ${CMAKE_INSTALL_BINDIR})

# The built-in rule set as files to copy and change, and the schemas. In the copy the settings name the
# files beside them instead of those in the library.
file(READ rules/adexp.ini settings)
string(REGEX REPLACE "^;[^\n]*" "; The built-in rule set as files. Paths start from the working directory."
    settings "${settings}")
string(REPLACE "=:/adexp/" "=" settings "${settings}")
file(CONFIGURE OUTPUT rules/adexp.ini CONTENT "${settings}" @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/rules/adexp.ini DESTINATION ${data_dir}/rules)
install(DIRECTORY rules/ DESTINATION ${data_dir}/rules FILES_MATCHING PATTERN "*.xml")
install(DIRECTORY schemas/ DESTINATION ${data_dir}/schemas)

# Documents, laid out as in the sources, for the links between them
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE SECURITY.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs samples DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES examples/convert.c examples/findings.cpp examples/table.py
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

# The reference of all fields and messages, which is made from the rule files
file(GLOB rule_files CONFIGURE_DEPENDS rules/*.xml)
add_custom_command(
    OUTPUT docs/reference.md
    COMMAND Python3::Interpreter -B ${PROJECT_SOURCE_DIR}/scripts/make-reference docs/reference.md
    DEPENDS scripts/make-reference ${rule_files}
    COMMENT "Making the reference of fields and messages"
    VERBATIM)
add_custom_target(adexp_reference ALL DEPENDS docs/reference.md)
install(FILES ${PROJECT_BINARY_DIR}/docs/reference.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)

# Manual pages and completions
add_subdirectory(manual)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/man1 ${PROJECT_BINARY_DIR}/manual/man3
    DESTINATION ${CMAKE_INSTALL_MANDIR})
install(FILES ${PROJECT_BINARY_DIR}/manual/bash/adexp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${PROJECT_BINARY_DIR}/manual/zsh/_adexp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES ${PROJECT_BINARY_DIR}/manual/fish/adexp.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
