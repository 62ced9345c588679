# The Debian package, which ./package makes. Its files of Debian's own are installed for it alone.

option(QUAVERLY_DEBIAN_PACKAGE "Install what a Debian package holds besides the program" OFF)
if(NOT QUAVERLY_DEBIAN_PACKAGE)
  return()
endif()

cmake_host_system_information(RESULT debian QUERY DISTRIB_VERSION_ID)
if(NOT debian MATCHES "^1[23]$")
  message(FATAL_ERROR "Packages are made on Debian 12 and 13, and this is ${debian}.")
endif()

# A package of Debian 13 comes after that of Debian 12, and a released one after those before it.
set(package_version ${PROJECT_VERSION})
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md newest REGEX "^## " LIMIT_COUNT 1)
if(newest MATCHES "not released yet")
  string(APPEND package_version "~pre")
endif()
string(APPEND package_version "+deb${debian}")
set(maintainer "The Quaverly developers <developers@quaverly.org>")

set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog)
add_custom_command(
  OUTPUT ${changelog}.gz
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/debian/make-changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${package_version}
          ${maintainer} > ${changelog}
  COMMAND gzip -9nkf ${changelog}
  DEPENDS debian/make-changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  VERBATIM)
add_custom_target(debian_files ALL DEPENDS ${changelog}.gz)
add_dependencies(quaverly debian_files)
install(FILES ${changelog}.gz debian/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})

# What is linked, dpkg-shlibdeps finds, and with it Chromium's process. What else must be there when the program starts:
# Chromium's data, and the plugins for sessions without an X server and for icons that are drawings.
set(loaded "libqt6webengine6-data, qt6-wayland")
if(debian GREATER_EQUAL 13)
  string(APPEND loaded ", qt6-svg-plugins")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quaverly)
set(CPACK_PACKAGE_VERSION ${package_version})
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://quaverly.org/)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS ${loaded})
# Text in every script; Qt's own words in other languages; priority for the threads of the sound.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-core, fonts-noto-cjk, qt6-translations-l10n, rtkit")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "xdg-desktop-portal")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "practise guitar from Guitar Pro and MusicXML scores")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Quaverly opens Guitar Pro and MusicXML files, draws them as notation and
tablature, and plays them while you play along: slower, in a loop, with a
metronome and a count-in, with or without the guitar that you are about to
replace. Each track can be shown, muted, heard alone and balanced.
.
It also shows PDF documents, one to six pages side by side. Where Audiveris
is installed, a PDF with standard notation becomes a score that plays.")
include(CPack)
