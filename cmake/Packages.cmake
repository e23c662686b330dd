# The Debian packages, one for each component of the installation: `cpack --preset package`, or scripts/package.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tev)
set(CPACK_PACKAGE_VENDOR "tev developers")
set(CPACK_PACKAGE_CONTACT "tev developers <developers@tev.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_COMPONENTS_ALL common populator agent development)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 0tev1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Each wants the others of its own version, as they were tried together; apt upgrades all of them at once. What others build
# wants that version of the common library or a later one, as shlibs.in has it.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The libraries of these packages are found where they were built, the others among the installed packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(CPACK_DEBIAN_COMMON_PACKAGE_NAME libtev-common0)
set(CPACK_DEBIAN_COMMON_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_COMMON_PACKAGE_RECOMMENDS openssh-client)
set(CPACK_DEBIAN_COMMON_DESCRIPTION "common library of the tev management components
What the components of a management agent share: the log, configuration files,
regular expressions, the way to the agent's portal, the reading of managed
objects, and the sending of files over SFTP.")

set(package_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
configure_file(packaging/libtev-common0/shlibs.in shlibs @ONLY)
set(CPACK_DEBIAN_COMMON_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/shlibs)
foreach(file IN ITEMS postinst postrm triggers)
    list(APPEND CPACK_DEBIAN_COMMON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/libtev-common0/${file})
endforeach()

set(CPACK_DEBIAN_POPULATOR_PACKAGE_NAME tev-schema-populator)
set(CPACK_DEBIAN_POPULATOR_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_POPULATOR_PACKAGE_DEPENDS openssh-client)
set(CPACK_COMPONENT_POPULATOR_DEPENDS common)
set(CPACK_DEBIAN_POPULATOR_DESCRIPTION "models of a node as managed objects, for a management agent
A plug-in that a management agent loads. It publishes the models of a node as
instances of the read-only class Schema, and sends a model's file to an SFTP
server when it is asked to.")

set(CPACK_DEBIAN_AGENT_PACKAGE_NAME tev-agent)
set(CPACK_DEBIAN_AGENT_PACKAGE_SECTION admin)
set(CPACK_COMPONENT_AGENT_DEPENDS populator common)
set(CPACK_DEBIAN_AGENT_DESCRIPTION "reference agent that hosts management components
It loads components, gives them every service of a management agent, and shows
what they serve: it lists and reads the models of a node, exports them, and
checks a component against its contract.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtev-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libpoco-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS common)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "development files of the tev management components
The tables between a management agent and its components, the headers of the
common library, and a CMake package with the targets tev::spi and tev::common.")

# What the policy asks of each package, and no other installation needs.
tev_add_page(packaging/changelog.in changelog.Debian)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} name)
    install(FILES packaging/copyright ${PROJECT_BINARY_DIR}/changelog.Debian.gz
        DESTINATION ${documentation}/${CPACK_DEBIAN_${name}_PACKAGE_NAME} COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
