# The shipped shared library: every core object plus the Aravis SDK backend.
add_library(ViewerBiz3 SHARED $<TARGET_OBJECTS:vb3_core> $<TARGET_OBJECTS:vb3_genapi> $<TARGET_OBJECTS:vb3_sdk_aravis>)
target_link_libraries(ViewerBiz3 PRIVATE PkgConfig::ARAVIS PkgConfig::SIMPLEINI spdlog::spdlog Threads::Threads)
set_target_properties(ViewerBiz3 PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_include_directories(ViewerBiz3 INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/api> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/sdk>
  $<INSTALL_INTERFACE:include/ViewerBiz3>)
