# Packages. In a build of the preset "package", "cpack" makes a Debian package of all that is installed, and
# "cpack --config CPackSourceConfig.cmake" an archive of the sources of the last commit. Both take their times from
# SOURCE_DATE_EPOCH; scripts/package sets it, makes both and proves them.

set(kestrel_maintainer "kestrel maintainers <maintainers@users.noreply.c-seed-6c44caef.example>")

set(CPACK_PACKAGE_NAME kestrel)
set(CPACK_PACKAGE_VENDOR "kestrel")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "checker for IBIS files")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${kestrel_maintainer}")
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")
# As Debian wants them, whatever those of the sources are.
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"IBIS files (EIA-656) describe the electrical behaviour of chip pins for
signal-integrity simulation. kestrel checks one and reports what is in it.
verimark checks any number of them, with package files, board descriptions and
parameter files: for people, editors and build servers, with explanations,
advice, reports with pictures and comparisons. The library gives programs the
findings and the records of a file.")
# What Debian wants of a package's files beside what is installed anywhere.
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/debian_tree.cmake")
set(CPACK_KESTREL_MAINTAINER "${kestrel_maintainer}")
set(CPACK_KESTREL_SOURCES "${PROJECT_SOURCE_DIR}")

set(CPACK_SOURCE_GENERATOR External)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT "${PROJECT_SOURCE_DIR}/cmake/source_archive.cmake")
set(CPACK_EXTERNAL_ENABLE_STAGING OFF)
include(CPack)
