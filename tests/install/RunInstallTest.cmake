# cmake -P script run by ctest: install, check the exported symbols, build and
# run the host both ways. Any failure ends the script with an error.
# With VB3_PREFIX the tree is there already (the Debian packages unpacked by
# scripts/package) and nothing is installed.
file(REMOVE_RECURSE ${VB3_WORK_DIR})
file(MAKE_DIRECTORY ${VB3_WORK_DIR})

function(run_checked what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed (${result}):\n${output}")
  endif()
  message(STATUS "${what}: ok")
  set(last_output "${output}" PARENT_SCOPE)
endfunction()

set(sanitizer_flags "")
if(VB3_SANITIZE STREQUAL "address")
  set(sanitizer_flags -fsanitize=address,undefined)
elseif(VB3_SANITIZE STREQUAL "thread")
  set(sanitizer_flags -fsanitize=thread)
endif()

if(DEFINED VB3_PREFIX)
  set(prefix ${VB3_PREFIX})
else()
  set(prefix ${VB3_WORK_DIR}/prefix)
  run_checked("install" ${CMAKE_COMMAND} --install ${VB3_BUILD_DIR} --prefix ${prefix})
endif()

file(GLOB pc_files ${prefix}/lib*/pkgconfig/viewerbiz3.pc ${prefix}/lib/*/pkgconfig/viewerbiz3.pc)
list(GET pc_files 0 pc_file)
get_filename_component(pc_dir ${pc_file} DIRECTORY)
get_filename_component(lib_dir ${pc_dir} DIRECTORY)

# The soname carries the major version, and only namespace ViewerBiz3 is exported.
run_checked("soname" objdump -p ${lib_dir}/libViewerBiz3.so)
if(NOT last_output MATCHES "SONAME +libViewerBiz3\\.so\\.3\n")
  message(FATAL_ERROR "unexpected soname:\n${last_output}")
endif()
run_checked("exported symbols" nm -D --defined-only -C ${lib_dir}/libViewerBiz3.so)
string(REPLACE "\n" ";" symbols "${last_output}")
foreach(line ${symbols})
  if(line MATCHES "^[0-9a-f]+ [A-Za-z] " AND NOT line MATCHES "^[0-9a-f]+ [A-Za-z] ViewerBiz3::")
    message(FATAL_ERROR "internal symbol exported: ${line}")
  endif()
endforeach()

# find_package host.
run_checked("configure cmake host" ${CMAKE_COMMAND} -S ${VB3_HOST_DIR} -B ${VB3_WORK_DIR}/cmake-host
  -G ${VB3_GENERATOR} -DCMAKE_CXX_COMPILER=${VB3_CXX} -DCMAKE_PREFIX_PATH=${prefix}
  "-DCMAKE_CXX_FLAGS=${sanitizer_flags}" "-DCMAKE_EXE_LINKER_FLAGS=${sanitizer_flags}")
run_checked("build cmake host" ${CMAKE_COMMAND} --build ${VB3_WORK_DIR}/cmake-host)
run_checked("run cmake host" ${VB3_WORK_DIR}/cmake-host/vb3_install_host)

# pkg-config host, compiled by hand as a Makefile would.
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run_checked("pkg-config" pkg-config --cflags --libs viewerbiz3)
string(STRIP "${last_output}" pkg_flags)
separate_arguments(pkg_flags UNIX_COMMAND "${pkg_flags}")
run_checked("build pkg-config host" ${VB3_CXX} -std=c++17 ${sanitizer_flags} ${VB3_HOST_DIR}/InstallHost.cpp
  ${pkg_flags} -o ${VB3_WORK_DIR}/pkg-config-host)
set(ENV{LD_LIBRARY_PATH} ${lib_dir})
run_checked("run pkg-config host" ${VB3_WORK_DIR}/pkg-config-host)

file(REMOVE_RECURSE ${VB3_WORK_DIR})
