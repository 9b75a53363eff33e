# The shipped shared library: every core object plus the Aravis SDK backend.
add_library(ViewerBiz3 SHARED $<TARGET_OBJECTS:vb3_core> $<TARGET_OBJECTS:vb3_genapi> $<TARGET_OBJECTS:vb3_sdk_aravis>)
target_link_libraries(ViewerBiz3 PRIVATE PkgConfig::ARAVIS PkgConfig::SIMPLEINI spdlog::spdlog Threads::Threads)
set_target_properties(ViewerBiz3 PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Hosts see the functions of namespace ViewerBiz3 and nothing else: hidden
# visibility covers our own code, the version script also hides the template
# code instantiated from the C++ library, and --exclude-libs anything that a
# static dependency would bring.
set(VB3_EXPORT_MAP ${CMAKE_CURRENT_LIST_DIR}/ViewerBiz3.map)
target_link_options(ViewerBiz3 PRIVATE "LINKER:--version-script=${VB3_EXPORT_MAP}" "LINKER:--exclude-libs,ALL")
set_property(TARGET ViewerBiz3 APPEND PROPERTY LINK_DEPENDS ${VB3_EXPORT_MAP})
if(VB3_SANITIZE STREQUAL "")
  # Sanitizer runtimes are resolved by the executable, so only plain builds can insist.
  target_link_options(ViewerBiz3 PRIVATE "LINKER:--no-undefined")
endif()

# The public headers live in include/ViewerBiz3/, laid out as a host sees them
# after installation, so in-tree hosts (the demo, the viewer) include
# <ViewerBiz3/ViewerBiz3.h> exactly like others. The GenApi interface copies
# (GenApiHeaders.cmake) are generated next to them under the build tree.
file(GLOB VB3_PUBLIC_HEADERS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/ViewerBiz3/*.h)
set(VB3_PUBLIC_INCLUDE_DIR ${PROJECT_BINARY_DIR}/public-include)
file(MAKE_DIRECTORY ${VB3_PUBLIC_INCLUDE_DIR}/ViewerBiz3)
target_include_directories(ViewerBiz3 INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${VB3_PUBLIC_INCLUDE_DIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# Installed in two components, which become the runtime and the development
# Debian packages (cmake/Debian.cmake).
install(TARGETS ViewerBiz3 EXPORT ViewerBiz3Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(FILES ${VB3_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ViewerBiz3 COMPONENT development)
include(${CMAKE_CURRENT_LIST_DIR}/GenApiHeaders.cmake)

set(VB3_CMAKE_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ViewerBiz3)
install(EXPORT ViewerBiz3Targets NAMESPACE ViewerBiz3:: DESTINATION ${VB3_CMAKE_PACKAGE_DIR} COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ViewerBiz3Config.cmake.in
  ${PROJECT_BINARY_DIR}/ViewerBiz3Config.cmake INSTALL_DESTINATION ${VB3_CMAKE_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ViewerBiz3ConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ViewerBiz3Config.cmake ${PROJECT_BINARY_DIR}/ViewerBiz3ConfigVersion.cmake
  DESTINATION ${VB3_CMAKE_PACKAGE_DIR} COMPONENT development)

# The pkg-config file finds the prefix from its own location, so the installed
# tree can be moved (and installed with --prefix) without editing it.
file(RELATIVE_PATH VB3_PC_PREFIX_FROM_PCDIR /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${CMAKE_CURRENT_LIST_DIR}/viewerbiz3.pc.in ${PROJECT_BINARY_DIR}/viewerbiz3.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/viewerbiz3.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
