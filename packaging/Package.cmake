# The Debian package: cpack -G DEB in a tree configured with CMAKE_INSTALL_PREFIX=/usr (scripts/package does it).
# Library dependencies come from dpkg-shlibdeps; the programs are stripped on the way in.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME osprel-emailfax)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Osprel")
set(CPACK_PACKAGE_CONTACT "Osprel EmailFax developers <emailfax@osprel.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "alarm notification server for environmental test chambers")
set(CPACK_PACKAGE_DESCRIPTION
    "Receives the alarms, errors and status reports of a chamber-control
program over the session message bus, queues them, decides by category
and priority level whether to send at once or hold them for a summary
report, and delivers them by e-mail (its own SMTP client or the system's
mail program) and by fax (a fax modem on a serial port). A window shows
the queues, the history, the recipients and the settings.")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so dpkg-shlibdeps cannot see them: the SQLite driver and a session bus.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, default-dbus-session-bus | dbus-session-bus")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "default-mta | mail-transport-agent")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://osprel.org/emailfax")
include(CPack)
