# What cmake --install puts where. The components are the packages that cmake/packages.cmake makes of
# them: "library" is what a program needs to run, "development" what it needs to be built, "python" the
# Python module, and "tools" the command with all that belongs to rule sets.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/adexp)
set(data_dir ${CMAKE_INSTALL_DATADIR}/adexp)

# The library, for CMake and for pkg-config
install(TARGETS adexp EXPORT adexp
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES include/adexp.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT adexp NAMESPACE adexp:: FILE adexpConfig.cmake
    DESTINATION ${package_dir} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/adexpConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/adexpConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# In adexp.pc the prefix is found from the place of the file, so the installed tree can be moved. An
# install folder that was given as an absolute path stays as it is.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
cmake_path(NORMAL_PATH pc_prefix)
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_libdir ${CMAKE_INSTALL_LIBDIR})
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
configure_file(cmake/adexp.pc.in adexp.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/adexp.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The Python module
install(DIRECTORY bindings/python/adexp
    DESTINATION lib/python${Python3_VERSION_MAJOR}.${Python3_VERSION_MINOR}/site-packages
    COMPONENT python PATTERN "__pycache__" EXCLUDE)
install(FILES bindings/python/README.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/bindings/python COMPONENT python)
install(FILES examples/table.py DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT python)

# The command
install(TARGETS adexp_command DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)

# The built-in rule set as files to copy and change, and the schemas. In the copy the settings name the
# files beside them instead of those in the library.
file(READ rules/adexp.ini settings)
string(REGEX REPLACE "^;[^\n]*" "; The built-in rule set as files. Paths start from the working directory."
    settings "${settings}")
string(REPLACE "=:/adexp/" "=" settings "${settings}")
file(CONFIGURE OUTPUT rules/adexp.ini CONTENT "${settings}" @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/rules/adexp.ini DESTINATION ${data_dir}/rules COMPONENT tools)
install(DIRECTORY rules/ DESTINATION ${data_dir}/rules COMPONENT tools FILES_MATCHING PATTERN "*.xml")
install(DIRECTORY schemas/ DESTINATION ${data_dir}/schemas COMPONENT tools)

# Documents, laid out as in the sources, for the links between them
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE SECURITY.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tools)
install(DIRECTORY docs samples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tools)
install(FILES examples/convert.c examples/reports.cpp
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT development)

# Manual pages and completions
add_subdirectory(manual)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/man1
    DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT tools)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/man3
    DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/manual/bash/adexp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
install(FILES ${PROJECT_BINARY_DIR}/manual/zsh/_adexp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tools)
install(FILES ${PROJECT_BINARY_DIR}/manual/fish/adexp.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
