# The Debian package, made by `cpack -G DEB` in the build folder: kvt-profiler_<version>_<arch>.deb
# with the viewer and the log tool, the reader libraries where the viewer looks for them, the
# Python module kvtprofile where Debian's Python finds it, the README, and a manual page per program made from its --help (and its commands' --help). Its
# dependencies are computed from the binaries (dpkg-shlibdeps).
if(NOT CMAKE_CROSSCOMPILING)
  find_program(KVT_HELP2MAN help2man REQUIRED)
  find_program(KVT_GZIP gzip REQUIRED)
  set(man_dir ${CMAKE_BINARY_DIR}/man)
  set(kvt-profile-viewer_summary "read a profiling log with a reader library and write its outputs")
  set(kvt-profile-log_summary "look inside, build and synthesise profiling logs")
  set(manual_pages)
  foreach(program kvt-profile-viewer kvt-profile-log)
    set(page ${man_dir}/${program}.1)
    # A program with commands gets their help too.
    set(commands_page)
    set(include_commands)
    if(program STREQUAL "kvt-profile-log")
      set(commands_page COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/commands-manual.sh
                        $<TARGET_FILE:${program}> ${page}.commands)
      set(include_commands --include=${page}.commands)
    endif()
    add_custom_command(
      OUTPUT ${page}.gz
      COMMAND ${CMAKE_COMMAND} -E make_directory ${man_dir}
      ${commands_page}
      COMMAND ${KVT_HELP2MAN} --no-info --name=${${program}_summary} ${include_commands}
              --output=${page} $<TARGET_FILE:${program}>
      COMMAND ${KVT_GZIP} -9nf ${page}
      DEPENDS ${program} ${CMAKE_CURRENT_LIST_DIR}/commands-manual.sh
      COMMENT "Writing the manual page of ${program}"
      VERBATIM)
    list(APPEND manual_pages ${page}.gz)
  endforeach()
  add_custom_target(KvtManualPages ALL DEPENDS ${manual_pages})
  install(FILES ${manual_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

  if(KVT_BUILD_TESTS)
    # With the Python module, the test also imports it from the package with Debian's Python.
    set(package_python)
    if(TARGET kvtprofile)
      set(package_python ${KVT_PYTHON})
    endif()
    add_test(NAME DebianPackage.InstallsAndRuns
             COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/test-package.sh ${CMAKE_BINARY_DIR}
                     ${PROJECT_VERSION} ${package_python})
    set_tests_properties(DebianPackage.InstallsAndRuns PROPERTIES TIMEOUT 300)
  endif()
endif()
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/kvt-profiler)

set(CPACK_PACKAGE_NAME kvt-profiler)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "profiling-log viewer: Chrome trace and statistics from inference-runtime logs")
set(CPACK_PACKAGE_CONTACT "KvtProfiler maintainers <kvt-profiler@localhost>")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The Python module's needs, which its binary does not name; the computed ones are added.
if(TARGET kvtprofile)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS
      "python3 (>= 3.11), python3 (<< 3.12), python3-numpy, python3-pandas")
endif()
include(CPack)
