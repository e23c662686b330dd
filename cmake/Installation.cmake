# What is installed, and where. Components: common (the common library), populator (the component), agent, development.

include(CMakePackageConfigHelpers)

# Programs and components find the libraries from where they are, in the folders of a build as in an installed tree, which may
# be moved as a whole. What is installed is what was built: rewriting the run path at installation would have the built
# files look in the current folder, too.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
    OUTPUT_VARIABLE libraries_from_programs)
set(run_path $ORIGIN/../lib $ORIGIN/${libraries_from_programs} ${CMAKE_INSTALL_RPATH})
list(REMOVE_DUPLICATES run_path)
set_target_properties(tev_agent PROPERTIES INSTALL_RPATH "${run_path}")
set(run_path $ORIGIN $ORIGIN/.. ${CMAKE_INSTALL_RPATH})
set_target_properties(tev_schema_populator PROPERTIES INSTALL_RPATH "${run_path}")
set_target_properties(tev_agent tev_common tev_schema_populator PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
set_target_properties(tev_spi PROPERTIES EXPORT_NAME spi)
set_target_properties(tev_common PROPERTIES EXPORT_NAME common)

# tev_add_page(SOURCE NAME): fills in a page and compresses it, as NAME.gz.
function(tev_add_page source name)
    configure_file(${source} ${name} @ONLY)
    add_custom_command(OUTPUT ${name}.gz COMMAND gzip -9nc ${name} > ${name}.gz DEPENDS ${PROJECT_BINARY_DIR}/${name})
    add_custom_target(page_${name} ALL DEPENDS ${name}.gz)
endfunction()

set(documentation ${CMAKE_INSTALL_DATAROOTDIR}/doc)
set(headers FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tev COMPONENT development)
install(TARGETS tev_spi EXPORT tevTargets ${headers})
install(TARGETS tev_common EXPORT tevTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT common NAMELINK_COMPONENT development
    ${headers})
install(TARGETS tev_schema_populator LIBRARY DESTINATION ${TEV_PLUGIN_FOLDER} COMPONENT populator)
install(TARGETS tev_agent RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT agent)

# The CMake package: find_package(tev) gives the targets tev::spi and tev::common.
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tev)
configure_package_config_file(cmake/tevConfig.cmake.in tevConfig.cmake INSTALL_DESTINATION ${package_folder}
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(tevConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(EXPORT tevTargets NAMESPACE tev:: DESTINATION ${package_folder} COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/tevConfig.cmake ${PROJECT_BINARY_DIR}/tevConfigVersion.cmake
    DESTINATION ${package_folder} COMPONENT development)

# What goes with the agent: its manual, and the completion of its words.
tev_add_page(packaging/tev-agent.1.in tev-agent.1)
install(FILES ${PROJECT_BINARY_DIR}/tev-agent.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT agent)
install(FILES packaging/tev-agent.bash DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions
    RENAME tev-agent COMPONENT agent)

# Pages refer to each other, so whoever operates a node and whoever writes a component get all of them, and the examples.
foreach(reader IN ITEMS "agent tev-agent" "development libtev-dev")
    separate_arguments(reader)
    list(POP_FRONT reader component package)
    install(FILES
        docs/abi-contract.md docs/architecture.md docs/check-items.md docs/configuration.md docs/managed-objects.md
        docs/model-files.md docs/operator-guide.md docs/sftp.md docs/tev-agent.md docs/tev-agent.schema.json
        docs/writing-a-component.md
        DESTINATION ${documentation}/${package} COMPONENT ${component})
    install(DIRECTORY examples DESTINATION ${documentation}/${package} COMPONENT ${component})
endforeach()
