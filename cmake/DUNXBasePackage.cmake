# Debian packages of the installed tree, built by `make package` (cpack):
#   dunxbase  the shared library, its headers, the CMake package and the
#             pkg-config file: everything a translator needs to build against it
#   dunx      the dunx driver with its translator module, over dunxbase; the
#             module is private to the driver (lib/<multiarch>/dunx/), not in bin/
# Configure with -DCMAKE_INSTALL_PREFIX=/usr, so that the library lands in the
# multiarch folder (lib/x86_64-linux-gnu) where Debian's loader and tools look.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dunxbase)
set(CPACK_PACKAGE_VENDOR "DUNX")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "DUNX translator developers <dunx-dev@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_DEB_COMPONENT_INSTALL ON)
# Each description below starts with its own summary line. CPack would put the
# project's one summary in front of both unless the summary is left at its
# default, which is this text.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake")
set(CPACK_COMPONENTS_ALL library driver)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME dunxbase)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
    "Foundation library of the DUNX CAD data-exchange translators
Result codes, a UTF-16 string, options with environment overrides and
configuration files, an event bus with translation-stage events, loggers,
byte streams and an archive reader, file paths, run-time modules, geometry
math and the public value, unit and name objects. With the headers, the CMake
package (find_package(DUNXBase)) and the pkg-config file (DUNXBase).")
set(CPACK_DEBIAN_DRIVER_PACKAGE_NAME dunx)
set(CPACK_DEBIAN_DRIVER_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_DRIVER_DESCRIPTION
    "DUNX translation driver with its STL-to-OBJ translator
dunx drives a translator module the way a host application does: options
from a configuration file and the environment, stage events on the console,
a log file per direction and a timing summary. Its translator reads STL parts
and assembly files and writes Wavefront OBJ.")
set(CPACK_COMPONENT_DRIVER_DEPENDS library)

# Written out rather than found with dpkg-shlibdeps, which cannot resolve the
# driver's own library before that is installed. The floors are those of the
# toolchain the packages are built with (Debian 12: glibc 2.36, GCC 12).
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libc6 (>= 2.34), libstdc++6 (>= 12), libgcc-s1")
set(CPACK_DEBIAN_DRIVER_PACKAGE_DEPENDS
    "dunxbase (= ${PROJECT_VERSION}), libc6 (>= 2.34), libstdc++6 (>= 12), libgcc-s1")

include(CPack)
