# The GenApi-compatible interface headers a host needs to walk and edit the node
# map that GetAttrNodeMap hands out, laid out as <ViewerBiz3/GenApi/...>.
#
# The set is GenApi.h, every interface header (genapi/I<Name>.h: an I and a
# capital, unlike helpers such as IntegerText.h) and whatever those include
# from genapi/, so a new interface header is picked up without editing this
# file. Inside the library the headers include each other as
# "genapi/Name.h"; the copies made here include their neighbours as "Name.h",
# which resolves next to the including file wherever the tree is installed.
# The copies are remade when a source header changes or a new one appears.

set(VB3_GENAPI_SOURCE_DIR ${PROJECT_SOURCE_DIR}/genapi)
set(VB3_GENAPI_PUBLIC_DIR ${VB3_PUBLIC_INCLUDE_DIR}/ViewerBiz3/GenApi)

file(GLOB vb3_genapi_interfaces CONFIGURE_DEPENDS ${VB3_GENAPI_SOURCE_DIR}/I[A-Z]*.h)
set(vb3_genapi_pending ${VB3_GENAPI_SOURCE_DIR}/GenApi.h ${vb3_genapi_interfaces})
set(vb3_genapi_headers "")
while(vb3_genapi_pending)
  list(POP_FRONT vb3_genapi_pending header)
  if(header IN_LIST vb3_genapi_headers)
    continue()
  endif()
  list(APPEND vb3_genapi_headers ${header})
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
  file(STRINGS ${header} includes REGEX "^#include \"genapi/[A-Za-z0-9_]+\\.h\"")
  foreach(line ${includes})
    string(REGEX REPLACE "^#include \"genapi/([A-Za-z0-9_]+\\.h)\".*" "\\1" included "${line}")
    list(APPEND vb3_genapi_pending ${VB3_GENAPI_SOURCE_DIR}/${included})
  endforeach()
endwhile()

# configure_file only rewrites a copy whose text changed, so a reconfigure does
# not rebuild every host of these headers.
set(vb3_genapi_copies "")
foreach(header ${vb3_genapi_headers})
  get_filename_component(header_name ${header} NAME)
  file(READ ${header} text)
  string(REGEX REPLACE "#include \"genapi/([A-Za-z0-9_]+\\.h)\"" "#include \"\\1\"" text "${text}")
  file(WRITE ${PROJECT_BINARY_DIR}/genapi-staging/${header_name} "${text}")
  configure_file(${PROJECT_BINARY_DIR}/genapi-staging/${header_name} ${VB3_GENAPI_PUBLIC_DIR}/${header_name} COPYONLY)
  list(APPEND vb3_genapi_copies ${VB3_GENAPI_PUBLIC_DIR}/${header_name})
endforeach()
file(GLOB vb3_genapi_stale ${VB3_GENAPI_PUBLIC_DIR}/*.h)
list(REMOVE_ITEM vb3_genapi_stale ${vb3_genapi_copies})
if(vb3_genapi_stale)
  file(REMOVE ${vb3_genapi_stale})
endif()

install(DIRECTORY ${VB3_GENAPI_PUBLIC_DIR} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ViewerBiz3 COMPONENT development)
