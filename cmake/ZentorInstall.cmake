# Where an installed system has its parts.  The programs look for the catalog in ../share/zentor-fatigue and for
# the progress window in ../lib/zentor-fatigue, seen from their own folder, so any prefix works.
#   cmake --install BUILD --prefix DIR        cpack --config BUILD/CPackConfig.cmake     (a Debian package)
install(TARGETS zentor-fatigue zentor-study RUNTIME DESTINATION bin)
if(TARGET quorvel)
  install(TARGETS quorvel LIBRARY DESTINATION lib/zentor-fatigue)
endif()

# Manual pages are stored compressed, and without the time of day, so that equal builds give equal packages.
find_program(ZENTOR_GZIP gzip REQUIRED)
set(manual_pages)
foreach(page zentor-fatigue.1 zentor-study.1)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/man/${page}.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
    COMMAND ${ZENTOR_GZIP} -9nc ${PROJECT_SOURCE_DIR}/docs/man/${page} > ${CMAKE_BINARY_DIR}/man/${page}.gz
    DEPENDS docs/man/${page} VERBATIM)
  list(APPEND manual_pages ${CMAKE_BINARY_DIR}/man/${page}.gz)
endforeach()
add_custom_target(zentor_manual ALL DEPENDS ${manual_pages})
install(FILES ${manual_pages} DESTINATION share/man/man1)

set(documentation share/doc/zentor-fatigue)
install(FILES README.md CHANGELOG.md DESTINATION ${documentation})
install(DIRECTORY docs DESTINATION ${documentation} PATTERN man EXCLUDE)
install(DIRECTORY examples DESTINATION ${documentation} USE_SOURCE_PERMISSIONS)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zentor-fatigue)
set(CPACK_PACKAGE_VENDOR "Zentor Fatigue maintainers")
set(CPACK_PACKAGE_CONTACT "Zentor Fatigue maintainers <maintainers@zentor-fatigue.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "fatigue usage factors of finite-element models")
set(CPACK_PACKAGE_DESCRIPTION
    "Reads a finite-element study with its stored stresses and computes the cumulative usage factor of one
location or of every node, for constant amplitude and for load histories.  The companion zentor-study builds
studies from readable files, runs them and exports their results.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
find_program(ZENTOR_SHLIBDEPS dpkg-shlibdeps)
if(ZENTOR_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1, libgomp1, libfmt9")
endif()
include(CPack)
