# The checks on what an installed Quaverly needs besides the program. All need packages marked "test" in
# debian-packages.txt; a test whose program is missing fails.

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(tests ${CMAKE_CURRENT_SOURCE_DIR}/tests)

add_test(NAME shell_scripts
  COMMAND shellcheck run test bench lint screenshots package release .ci/run packaging/build packaging/in-bare-root
          packaging/install-dependencies packaging/run-unattended packaging/try-package packaging/check-package
          packaging/debian/make-changelog packaging/tests/test_run_unattended packaging/tests/test_installed
          packaging/tests/test_manual_page
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})

add_test(NAME desktop_entry
  COMMAND ${CMAKE_COMMAND} -E env desktop-file-validate --warn-kde ${CMAKE_CURRENT_SOURCE_DIR}/${id}.desktop)
set_tests_properties(desktop_entry PROPERTIES FAIL_REGULAR_EXPRESSION "warning|hint|error")

foreach(name file_types metainfo flatpak release version)
  add_test(NAME ${name} COMMAND Python3::Interpreter -B ${tests}/test_${name}.py)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
    "QUAVERLY_SCORES=${CMAKE_BINARY_DIR}/tests/scores;QUAVERLY_ICONS=${icons_made}")
endforeach()

add_test(NAME manual_page
  COMMAND ${tests}/test_manual_page ${CMAKE_CURRENT_BINARY_DIR}/quaverly.1.gz $<TARGET_FILE:quaverly>)
set_tests_properties(manual_page PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen)

add_test(NAME unattended_run COMMAND ${tests}/test_run_unattended $<TARGET_FILE:quaverly>)
set_tests_properties(unattended_run PROPERTIES LABELS webengine TIMEOUT 200)

add_test(NAME installed_program COMMAND ${tests}/test_installed ${CMAKE_BINARY_DIR} ${PROJECT_VERSION})
set_tests_properties(installed_program PROPERTIES LABELS webengine TIMEOUT 200
                     ENVIRONMENT QUAVERLY_SCORES=${CMAKE_BINARY_DIR}/tests/scores)
