# Installation and packages of the native library: the version header,
# versioned shared objects (libtessarkao.so.1, which holds the automation
# runtime with the classes), the public headers under
# include/tessarkao/ with the umbrella header <tessarkao/TessarkAO.hpp>, the
# CMake package TessarkAO (targets TessarkAO::tessarkao and TessarkAO::refhost)
# and the pkg-config file tessarkao.pc.  Included last from the top
# CMakeLists.txt, when every target exists.
include(CMakePackageConfigHelpers)

set(TK_PACKAGE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TessarkAO)
set(TK_GENERATED_INCLUDE_DIR ${PROJECT_BINARY_DIR}/generated)

# <tessarkao/Version.hpp>: the one version of the project, for C++ code.
configure_file(${CMAKE_CURRENT_LIST_DIR}/Version.hpp.in ${TK_GENERATED_INCLUDE_DIR}/tessarkao/Version.hpp @ONLY)
target_include_directories(tessarkao INTERFACE
  $<BUILD_INTERFACE:${TK_GENERATED_INCLUDE_DIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# The shared objects carry the major version as their SONAME.
set(TK_PACKAGE_LIBRARIES tessarkao)
if(TARGET tessarkao_refhost)
  list(APPEND TK_PACKAGE_LIBRARIES tessarkao_refhost)
  target_include_directories(tessarkao_refhost PUBLIC
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tessarkao>)
  set_target_properties(tessarkao_refhost PROPERTIES EXPORT_NAME refhost)
endif()
set_target_properties(${TK_PACKAGE_LIBRARIES} PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

install(TARGETS ${TK_PACKAGE_LIBRARIES} EXPORT TessarkAOTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)

# Headers: every layer's headers as they sit in src/ (they include one another
# as "layer/Header.hpp", hence include/tessarkao on the include path), the
# reference host's, and the generated version header.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarkao
  COMPONENT development
  FILES_MATCHING PATTERN "*.hpp" PATTERN "com" EXCLUDE PATTERN "posix" EXCLUDE PATTERN "win32" EXCLUDE)
if(TARGET tessarkao_refhost)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/refhost/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarkao/refhost
    COMPONENT development FILES_MATCHING PATTERN "*.hpp")
endif()
install(FILES ${TK_GENERATED_INCLUDE_DIR}/tessarkao/Version.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessarkao COMPONENT development)

# The CMake package.
install(EXPORT TessarkAOTargets NAMESPACE TessarkAO:: DESTINATION ${TK_PACKAGE_CMAKE_DIR}
  COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TessarkAOConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TessarkAOConfig.cmake INSTALL_DESTINATION ${TK_PACKAGE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessarkAOConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessarkAOConfig.cmake ${PROJECT_BINARY_DIR}/TessarkAOConfigVersion.cmake
  DESTINATION ${TK_PACKAGE_CMAKE_DIR} COMPONENT development)

# The pkg-config file.
file(RELATIVE_PATH TK_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${CMAKE_CURRENT_LIST_DIR}/tessarkao.pc.in ${PROJECT_BINARY_DIR}/tessarkao.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tessarkao.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)

# The class reference and the Python stubs, generated from the member tables.
add_subdirectory(${PROJECT_SOURCE_DIR}/docs/generator ${PROJECT_BINARY_DIR}/docs)

# Debian packages of the components (cpack -G DEB).
include(TessarkAOCPack)
