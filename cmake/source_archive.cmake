# Run by cpack: writes the archive of the sources of the last commit, NAME-VERSION.tar.gz. It is what git knows, in its
# order and with its times, so that a commit has one archive.

set(name "${CPACK_PACKAGE_NAME}-${CPACK_PACKAGE_VERSION}")
set(archive "${CPACK_PACKAGE_DIRECTORY}/${name}.tar")
execute_process(
    COMMAND git -C "${CPACK_KESTREL_SOURCES}" -c tar.umask=0022 archive --format=tar "--prefix=${name}/" "--output=${archive}" HEAD
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gzip -9 -n -f "${archive}" COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_EXTERNAL_BUILT_PACKAGES "${archive}.gz")
