# Installation: the shared and static libraries, the public headers, the CMake
# package Kalbor400U (targets Kalbor400U::Kalbor400U and
# Kalbor400U::Kalbor400U_static, with a version file: any 0.x release
# satisfies a request for the same major version) and the pkg-config file
# kalbor400u.pc. Every path is relative to the install prefix, so the
# installed tree can be moved: `cmake --install <build> --prefix <dir>`.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KALBOR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Kalbor400U)

foreach(library Kalbor400U Kalbor400U_static)
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
install(TARGETS Kalbor400U Kalbor400U_static EXPORT Kalbor400UTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/kalbor DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT Kalbor400UTargets NAMESPACE Kalbor400U:: DESTINATION ${KALBOR_CMAKE_DIR})

configure_package_config_file(cmake/Kalbor400UConfig.cmake.in ${PROJECT_BINARY_DIR}/Kalbor400UConfig.cmake
  INSTALL_DESTINATION ${KALBOR_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/Kalbor400UConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/Kalbor400UConfig.cmake ${PROJECT_BINARY_DIR}/Kalbor400UConfigVersion.cmake
  DESTINATION ${KALBOR_CMAKE_DIR})

# pkg-config finds the prefix from where the file lies (${pcfiledir}), so the
# file names no absolute path unless the install folders are absolute.
file(RELATIVE_PATH KALBOR_PC_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" KALBOR_PC_PREFIX "${KALBOR_PC_PREFIX}")
foreach(dir LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
    set(KALBOR_PC_${dir} "${CMAKE_INSTALL_${dir}}")
  else()
    set(KALBOR_PC_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
  endif()
endforeach()
configure_file(cmake/kalbor400u.pc.in ${PROJECT_BINARY_DIR}/kalbor400u.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kalbor400u.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
