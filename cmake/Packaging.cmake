# Installation layout and the Debian packages. Components:
#   library      the shared library                      -> libnexarocontrols0
#   development  headers, CMake package, pkg-config file  -> libnexarocontrols-dev
#   host         nexaro-page and the controller simulator -> nexaro-page
#   designer     the Qt Designer plugin                   -> nexarocontrols-designer
# `cmake --install build [--prefix DIR]` installs all of them; `cpack --config build/CPackConfig.cmake`
# (run in any folder) writes one .deb per component.

install(TARGETS NexaroControls EXPORT NexaroControlsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY ${NXR_SUBSYSTEMS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/NexaroControls
  COMPONENT development OPTIONAL FILES_MATCHING PATTERN "*.h")
install(EXPORT NexaroControlsTargets NAMESPACE NexaroControls::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NexaroControls COMPONENT development)
include(CMakePackageConfigHelpers)
configure_package_config_file(cmake/NexaroControlsConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/NexaroControlsConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NexaroControls)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/NexaroControlsConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/NexaroControlsConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/NexaroControlsConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NexaroControls COMPONENT development)

# pkg-config: the prefix is found from the .pc file's own place, so --prefix at install time works.
file(RELATIVE_PATH NXR_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/NexaroControls.pc.in ${CMAKE_CURRENT_BINARY_DIR}/NexaroControls.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/NexaroControls.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The page host and the simulator it is tried against. Installed programs find the library
# relative to themselves, wherever the prefix is.
set_target_properties(nexaro-page PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
install(PROGRAMS sim/controller_sim.py DESTINATION ${CMAKE_INSTALL_DATADIR}/nexarocontrols/sim COMPONENT host)
install(FILES sim/README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/nexarocontrols/sim COMPONENT host)
if(TARGET nexaro_designer)
  file(RELATIVE_PATH nxr_plugin_to_lib /prefix/${NXR_DESIGNER_PLUGIN_DIR} /prefix/${CMAKE_INSTALL_LIBDIR})
  set_target_properties(nexaro_designer PROPERTIES INSTALL_RPATH "$ORIGIN/${nxr_plugin_to_lib}")
endif()

# Debian packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nexarocontrols)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "NexaroControls maintainers <nexarocontrols@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Scriptable Qt controls for robot-controller vision pages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development host designer)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The library is found in the build tree while the other packages' dependencies are worked out;
# the dependency on its package comes from the component dependencies below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_HOST_DEPENDS library)
set(CPACK_COMPONENT_DESIGNER_DEPENDS library)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libnexarocontrols0)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libnexarocontrols-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev")
set(CPACK_DEBIAN_HOST_PACKAGE_NAME nexaro-page)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION misc)
# The simulator (share/nexarocontrols/sim) needs Python with pyftpdlib; the page host does not.
set(CPACK_DEBIAN_HOST_PACKAGE_RECOMMENDS "python3, python3-pyftpdlib")
set(CPACK_DEBIAN_DESIGNER_PACKAGE_NAME nexarocontrols-designer)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_RECOMMENDS "designer-qt6")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "NexaroControls shared library\n The scriptable controls and helper objects.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "NexaroControls development files\n Headers, CMake package and pkg-config file.")
set(CPACK_COMPONENT_HOST_DESCRIPTION "NexaroControls page host\n nexaro-page runs pages (a Designer form and a script); with the controller simulator.")
set(CPACK_COMPONENT_DESIGNER_DESCRIPTION "NexaroControls Qt Designer plugin\n Every control in Designer's widget box.")
include(CPack)
