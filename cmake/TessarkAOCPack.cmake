# Debian packages of the installed components, made in a build tree by
# `cpack -G DEB` (after the build):
#   libtessarkao1       runtime: libtessarkao.so.1 and libtessarkao_refhost.so.1
#   libtessarkao-dev    development: headers, the CMake package, tessarkao.pc and
#                       the unversioned .so links
#   python3-tessarkao   python: the tessarkao package
# They install where `cmake --install` does (CMAKE_INSTALL_PREFIX, /usr/local
# by default); configure with -DCMAKE_INSTALL_PREFIX=/usr for packages in the
# system's own folders (the Python package then goes to
# /usr/lib/python3/dist-packages).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessarkao)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The TessarkAO developers")
set(CPACK_PACKAGE_CONTACT "The TessarkAO developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "automation library of the host CAD application's tools")
set(CPACK_PACKAGE_DESCRIPTION
    "31 automation classes created by ProgID and called late-bound by member name.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET tessarkao_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtessarkao1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# The system libraries the shared objects link (SQLite, FreeType, ...) as
# package dependencies, found by dpkg-shlibdeps.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# A shlibs file and the ldconfig trigger, as for any Debian shared library package.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION_SUMMARY}: shared libraries")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtessarkao-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libtessarkao1 (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "${CPACK_PACKAGE_DESCRIPTION_SUMMARY}: headers, CMake package and pkg-config file")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tessarkao)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
# The extension is built for one interpreter version (its file name says so).
find_package(Python COMPONENTS Interpreter QUIET)
math(EXPR tk_python_next "${Python_VERSION_MINOR} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "libtessarkao1 (= ${PROJECT_VERSION}), python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}), python3 (<< ${Python_VERSION_MAJOR}.${tk_python_next})")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION_SUMMARY}: Python 3 package")

include(CPack)
