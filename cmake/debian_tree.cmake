# Run by cpack when the files of a package are in place: adds its documents and compresses what Debian has compressed.

if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(share "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share")
set(doc "${share}/doc/${CPACK_PACKAGE_NAME}")
file(MAKE_DIRECTORY "${doc}")
file(COPY_FILE "${CPACK_KESTREL_SOURCES}/packaging/copyright" "${doc}/copyright")

# The time of the commit, by SOURCE_DATE_EPOCH; else now.
string(TIMESTAMP day "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(version "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
file(WRITE "${doc}/changelog.Debian" "${CPACK_PACKAGE_NAME} (${version}) unstable; urgency=medium\n\n"
    "  * Version ${CPACK_PACKAGE_VERSION}; what is new is in changelog.gz.\n\n"
    " -- ${CPACK_KESTREL_MAINTAINER}  ${day}\n")
file(READ "${CPACK_KESTREL_SOURCES}/CHANGELOG.md" changelog)
file(WRITE "${doc}/changelog" "${changelog}")

file(GLOB pages "${share}/man/man*/*")
file(CHMOD "${doc}/copyright" "${doc}/changelog" "${doc}/changelog.Debian" ${pages}
    PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
run(gzip -9 -n "${doc}/changelog" "${doc}/changelog.Debian" ${pages})
