# Where an installation puts the files. Without SUNPANE_DISTRIBUTION all of them make up one folder, Dawnly.app, that can
# be moved and copied. With it the programs keep a folder of that name, by which they know that they are installed, and
# everything else goes where a desktop looks for it.
option(SUNPANE_DISTRIBUTION "Install the way that a distribution wants it, below bin, lib and share" OFF)

if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT AND DEFINED ENV{HOME})
  # For one user, without being root.
  set(ownPrefix "$ENV{HOME}/.local/lib")
  if(SUNPANE_DISTRIBUTION)
    set(ownPrefix /usr)
  endif()
  set(CMAKE_INSTALL_PREFIX ${ownPrefix} CACHE PATH "Where Dawnly.app, or bin, lib and share, go" FORCE)
endif()

if(SUNPANE_DISTRIBUTION)
  set(bundle lib/dawnly/Dawnly.app)
  set(share share)
  set(zshCompletions share/zsh/vendor-completions)
else()
  set(bundle Dawnly.app)
  set(share Dawnly.app/share)
  set(zshCompletions Dawnly.app/share/zsh/site-functions)
endif()
set(packaging ${PROJECT_SOURCE_DIR}/packaging)

install(TARGETS dawnlyctl RUNTIME DESTINATION ${bundle}/bin)
install(TARGETS dawnly_pulse LIBRARY DESTINATION ${bundle}/lib/dawnly)
if(SUNPANE_EDS)
  install(TARGETS dawnly_eds LIBRARY DESTINATION ${bundle}/lib/dawnly)
endif()
set(programs dawnlyctl)

if(SUNPANE_UI)
  list(APPEND programs dawnly)
  install(TARGETS dawnly RUNTIME DESTINATION ${bundle}/bin)
  install(FILES ${packaging}/desktop/app.dawnly.Dawnly.desktop DESTINATION ${share}/applications)
  install(FILES ${packaging}/desktop/app.dawnly.Dawnly.metainfo.xml DESTINATION ${share}/metainfo)

  find_program(RSVG_CONVERT rsvg-convert REQUIRED DOC "Draws the icons: librsvg2-bin")
  set(hicolor ${share}/icons/hicolor)
  set(icons)
  foreach(size 16 22 24 32 48 64 128 256 512)
    set(icon ${PROJECT_BINARY_DIR}/icons/${size}.png)
    add_custom_command(OUTPUT ${icon}
      COMMAND ${packaging}/icons/render.sh ${size} ${icon}
      DEPENDS ${packaging}/icons/render.sh ${packaging}/icons/app.dawnly.Dawnly.svg ${packaging}/icons/small-sizes.svg
      VERBATIM)
    install(FILES ${icon} DESTINATION ${hicolor}/${size}x${size}/apps RENAME app.dawnly.Dawnly.png)
    list(APPEND icons ${icon})
  endforeach()
  add_custom_target(sunpane_icons DEPENDS ${icons})
  add_dependencies(dawnly sunpane_icons)  # whoever builds the program can install it
  install(FILES ${packaging}/icons/app.dawnly.Dawnly.svg DESTINATION ${hicolor}/scalable/apps)
  install(FILES ${packaging}/icons/app.dawnly.Dawnly-symbolic.svg DESTINATION ${hicolor}/symbolic/apps)
endif()

foreach(program ${programs})
  install(FILES ${packaging}/man/${program}.1 DESTINATION ${share}/man/man1)
  install(FILES ${packaging}/completions/${program}.bash DESTINATION ${share}/bash-completion/completions RENAME ${program})
  install(FILES ${packaging}/completions/_${program} DESTINATION ${zshCompletions})
  install(FILES ${packaging}/completions/${program}.fish DESTINATION ${share}/fish/vendor_completions.d)
  if(SUNPANE_DISTRIBUTION)
    set(link ${PROJECT_BINARY_DIR}/links/${program})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
    file(CREATE_LINK ../${bundle}/bin/${program} ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION bin)
  endif()
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/docs/briefing-format.md DESTINATION ${share}/doc/dawnly)

if(SUNPANE_UI AND NOT SUNPANE_DISTRIBUTION)
  install(PROGRAMS ${packaging}/add-to-desktop.sh DESTINATION ${share}/dawnly)
endif()

if(SUNPANE_DISTRIBUTION)
  include(cmake/DebianPackage.cmake)
endif()
