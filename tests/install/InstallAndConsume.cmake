# Installs the build into a fresh prefix and builds and runs a host against
# it three ways: find_package on the installed package, find_package on the
# build tree, and pkg-config. Run with cmake -P; see CMakeLists.txt.
foreach(v BUILD_DIR CONSUMER_DIR WORK_DIR LIBDIR CXX OBJDUMP PKG_CONFIG SONAME)
  if(NOT DEFINED ${v})
    message(FATAL_ERROR "${v} is not set")
  endif()
endforeach()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    string(REPLACE ";" " " cmd "${ARGN}")
    message(FATAL_ERROR "failed (${rc}): ${cmd}\n${out}\n${err}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

set(lib ${prefix}/${LIBDIR}/${SONAME})
if(NOT EXISTS ${lib})
  message(FATAL_ERROR "${SONAME} was not installed into ${prefix}/${LIBDIR}")
endif()
run(${OBJDUMP} -p ${lib})
if(NOT run_output MATCHES "SONAME +${SONAME}\n")
  message(FATAL_ERROR "${lib} does not carry the SONAME ${SONAME}")
endif()

set(photo ${WORK_DIR}/photo.jpg)
set(ENV{QT_QPA_PLATFORM} offscreen)

# find_package against the installed prefix, then against the build tree.
foreach(kind installed build-tree)
  set(out ${WORK_DIR}/${kind})
  if(kind STREQUAL "installed")
    set(where -DCMAKE_PREFIX_PATH=${prefix})
    set(expected_dir ${prefix}/${LIBDIR}/cmake/VoImageEditor)
  else()
    set(where -DVoImageEditor_DIR=${BUILD_DIR}/imageeditor)
    set(expected_dir ${BUILD_DIR}/imageeditor)
  endif()
  run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${out} -DCMAKE_CXX_COMPILER=${CXX}
      -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF ${where}
      "-DCMAKE_CXX_FLAGS=${CONSUMER_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${CONSUMER_FLAGS}")
  file(STRINGS ${out}/CMakeCache.txt found REGEX "^VoImageEditor_DIR:")
  if(NOT found MATCHES "=${expected_dir}$")
    message(FATAL_ERROR "${kind}: found the package at ${found}, not ${expected_dir}")
  endif()
  run(${CMAKE_COMMAND} --build ${out})
  run(${out}/consumer ${photo})
  message(STATUS "${kind}: ${run_output}")
endforeach()

# pkg-config, as a plain makefile host would use it.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
run(${PKG_CONFIG} --cflags --libs voimageeditor)
string(STRIP "${run_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(extra UNIX_COMMAND "${CONSUMER_FLAGS}")
run(${CXX} -std=c++17 -fPIC ${extra} ${CONSUMER_DIR}/main.cpp -o ${WORK_DIR}/consumer-pc ${flags}
    -Wl,-rpath,${prefix}/${LIBDIR})
run(${WORK_DIR}/consumer-pc ${photo})
message(STATUS "pkg-config: ${run_output}")
