# Installs headers, the library, a CMake package (config + version file) and a
# pkg-config file, so that consumers need only find_package or pkg-config.
include(CMakePackageConfigHelpers)

set(DUNX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/DUNXBase)

install(TARGETS DUNXBase
    EXPORT DUNXBaseTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/dunx
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT library
    FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/dunx/DUNXExport.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dunx
    COMPONENT library)

install(EXPORT DUNXBaseTargets
    NAMESPACE DUNXBase::
    DESTINATION ${DUNX_CMAKE_DIR}
    COMPONENT library)

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/DUNXBaseConfig.cmake.in
    ${PROJECT_BINARY_DIR}/DUNXBaseConfig.cmake
    INSTALL_DESTINATION ${DUNX_CMAKE_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/DUNXBaseConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/DUNXBaseConfig.cmake
    ${PROJECT_BINARY_DIR}/DUNXBaseConfigVersion.cmake
    DESTINATION ${DUNX_CMAKE_DIR}
    COMPONENT library)

# The pkg-config file finds its prefix from where it lies, so it stays right after
# `cmake --install --prefix DIR` and after the whole tree is moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(DUNX_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
    set(DUNX_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(DUNX_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
    file(RELATIVE_PATH _dunx_pc_up "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
    string(REGEX REPLACE "/$" "" _dunx_pc_up "${_dunx_pc_up}")
    set(DUNX_PC_PREFIX "\${pcfiledir}/${_dunx_pc_up}")
    set(DUNX_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(DUNX_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/DUNXBase.pc.in
    ${PROJECT_BINARY_DIR}/DUNXBase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/DUNXBase.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT library)
