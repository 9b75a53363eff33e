# Debian packages made by CPack from the install components (scripts/package):
#   libviewerbiz3-3     runtime:     libViewerBiz3.so.3
#   libviewerbiz3-dev   development: headers (with GenApi/), CMake package, pkg-config, libViewerBiz3.so
#   viewerbiz3-viewer   viewer:      vb3-viewer (only when Qt 6 was found)
# Dependencies on system libraries come from dpkg-shlibdeps; the packages of
# one build depend on each other at exactly their version.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME viewerbiz3)
set(CPACK_PACKAGE_VENDOR "ViewerBiz3")
set(CPACK_PACKAGE_CONTACT "ViewerBiz3 developers <viewerbiz3@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Business layer of a machine-vision camera viewer")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps finds libViewerBiz3.so.3 of this build for the viewer's dependencies.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_SECTION libs)

set(vb3_exact_runtime "libviewerbiz3-3 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libviewerbiz3-3)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "ViewerBiz3 shared library\n Camera discovery, opening, grabbing with statistics, features, profile-camera\n modes, settings and logging for a machine-vision viewer; cameras through Aravis.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libviewerbiz3-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ${vb3_exact_runtime})
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "ViewerBiz3 development files\n Public headers (with the GenApi-compatible node-map interfaces), the CMake\n package (find_package(ViewerBiz3)) and viewerbiz3.pc.")
set(CPACK_DEBIAN_VIEWER_PACKAGE_NAME viewerbiz3-viewer)
set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_VIEWER_PACKAGE_DEPENDS ${vb3_exact_runtime})
set(CPACK_COMPONENT_VIEWER_DESCRIPTION
  "ViewerBiz3 reference viewer\n A Qt 6 desktop viewer for GigE Vision, USB3 Vision, profile and show-mode\n cameras on libViewerBiz3; vb3-viewer --simulated shows built-in simulated cameras.")

set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET vb3-viewer)
  list(APPEND CPACK_COMPONENTS_ALL viewer)
endif()
include(CPack)
