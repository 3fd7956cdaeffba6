# The Debian package: cpack in a build folder that was configured with SUNPANE_DISTRIBUTION.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dawnly)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Sunpane developers <developers@sunpane.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "day's briefing in a panel under the notch")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"A panel folds out of the notch at the top of the screen and shows the day's
briefing: a markdown file that your own agent drops into a folder once a day.
Every bullet is a card to flag, clear or hide, and what you did with it is told
to the agent for the next briefing. The panel has a todo list with reminders,
the next meeting, and what plays.

dawnlyctl does the same from the command line.")

# What the linker does not know of: the views' modules and the programs that are called.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "qml6-module-qtquick, qml6-module-qtqml, qml6-module-qtqml-workerscript, qml6-module-qtqml-models, qml6-module-qtquick-window")
# The services that the program speaks to when they are there; the libraries of its modules are added to them.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "default-dbus-session-bus | dbus-session-bus, gnome-shell | notification-daemon, evolution-data-server, pipewire-pulse | pulseaudio, xdg-utils, fonts-inter, fonts-noto-color-emoji")
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish.cmake)
include(CPack)

set(doc share/doc/dawnly)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/debian/copyright ${PROJECT_SOURCE_DIR}/packaging/debian/changelog
  DESTINATION ${doc})
