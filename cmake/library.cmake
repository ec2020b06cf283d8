# libkestrel: the core behind its one public header, with what other builds need to find it.

file(GLOB kestrel_api_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/api/*.cpp")
add_library(kestrel_api OBJECT ${kestrel_api_sources})
target_include_directories(kestrel_api PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/include")
target_compile_definitions(kestrel_api PRIVATE "KESTREL_LIBRARY_VERSION=\"${PROJECT_VERSION}\"")
kestrel_own_target(kestrel_api)

# The target of the program has the name.
add_library(kestrel_shared SHARED $<TARGET_OBJECTS:kestrel_api> $<TARGET_OBJECTS:kestrel_core>)
target_include_directories(kestrel_shared INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(kestrel_shared INTERFACE cxx_std_20)
target_link_libraries(kestrel_shared PRIVATE Threads::Threads)
kestrel_own_target(kestrel_shared)
kestrel_optimize_library(kestrel_shared)
set(kestrel_exports "${PROJECT_SOURCE_DIR}/cmake/libkestrel.map")
target_link_options(kestrel_shared PRIVATE "-Wl,--version-script=${kestrel_exports}")
set_target_properties(kestrel_shared PROPERTIES
    OUTPUT_NAME kestrel EXPORT_NAME kestrel LINKER_LANGUAGE CXX LINK_DEPENDS "${kestrel_exports}"
    VERSION "${PROJECT_VERSION}" SOVERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}"
    LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
add_library(kestrel::kestrel ALIAS kestrel_shared)

include(CMakePackageConfigHelpers)
set(kestrel_package "${CMAKE_INSTALL_LIBDIR}/cmake/kestrel")
install(TARGETS kestrel_shared EXPORT kestrel
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library NAMELINK_COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/include/kestrel/kestrel.hpp"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrel" COMPONENT development)
install(EXPORT kestrel NAMESPACE kestrel:: FILE kestrel-config.cmake
    DESTINATION "${kestrel_package}" COMPONENT development)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kestrel-config-version.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kestrel-config-version.cmake"
    DESTINATION "${kestrel_package}" COMPONENT development)

# Goes by where the file is, so that an installation can be moved.
file(RELATIVE_PATH kestrel_pc_prefix "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/kestrel.pc.in "${PROJECT_BINARY_DIR}/kestrel.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kestrel.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
