# What is installed, and the two Debian packages made of it: wattlark (the window) and wattlark-headless (a service).
# Neither needs the other and both can be installed together, so each has its own manual, completion and udev rule.
include_guard()
include(GNUInstallDirs)

set(packaging "${PROJECT_SOURCE_DIR}/packaging")
set(generated "${PROJECT_BINARY_DIR}/packaging")
set(desktopID "org.wattlark.Wattlark")
set(packages wattlark wattlark-headless)
set(generatedFiles)

# Packages are made of targets that exist by then: installing does not build everything else.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

foreach(package IN LISTS packages)
  install(TARGETS ${package} RUNTIME COMPONENT ${package})
  install(FILES "${packaging}/completion/wattlark.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME ${package} COMPONENT ${package})
  install(FILES "${packaging}/completion/_wattlark"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" RENAME _${package} COMPONENT ${package})
  install(FILES "${packaging}/completion/wattlark.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" RENAME ${package}.fish COMPONENT ${package})
  install(FILES "${packaging}/wattlark.rules"
    DESTINATION lib/udev/rules.d RENAME 60-${package}.rules COMPONENT ${package})
  file(WRITE "${generated}/${package}.overrides"
    "# It was never uploaded anywhere.\n${package}: initial-upload-closes-no-bugs\n")
  install(FILES "${generated}/${package}.overrides"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME ${package} COMPONENT ${package})
  install(FILES "${packaging}/debian/copyright"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${package})
endforeach()

install(FILES "${packaging}/wattlark.service"
  DESTINATION lib/systemd/system COMPONENT wattlark-headless)
install(FILES "${packaging}/wattlark.sysusers"
  DESTINATION lib/sysusers.d RENAME wattlark.conf COMPONENT wattlark-headless)

install(FILES "${PROJECT_SOURCE_DIR}/resources/notice.wav"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/wattlark" COMPONENT wattlark)
install(FILES "${packaging}/${desktopID}.desktop"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT wattlark)
set(homepage "${WATTLARK_WEBSITE_URL}")
if(NOT homepage)
  set(homepage "https://wattlark.example.org")
endif()
configure_file("${packaging}/${desktopID}.metainfo.xml.in" "${generated}/${desktopID}.metainfo.xml" @ONLY)
install(FILES "${generated}/${desktopID}.metainfo.xml"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo" COMPONENT wattlark)

set(icons "${PROJECT_SOURCE_DIR}/resources/icons")
set(themeFolder "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
install(FILES "${icons}/wattlark.svg"
  DESTINATION "${themeFolder}/scalable/apps" RENAME ${desktopID}.svg COMPONENT wattlark)
install(FILES "${icons}/wattlark-symbolic.svg"
  DESTINATION "${themeFolder}/symbolic/apps" RENAME ${desktopID}-symbolic.svg COMPONENT wattlark)
# The notification area's icons, one for each number of lit bars, for desktops that colour such
# icons themselves; both ways of naming the colours are in use.
set(lit "class=\"ColorScheme-PositiveText success\" style=\"fill:currentColor\"")
set(dim "class=\"ColorScheme-Text\" style=\"fill:currentColor;fill-opacity:0.35\"")
foreach(litBars RANGE 5)
  set(bars)
  foreach(bar RANGE 1 5)
    math(EXPR y "16 - 3 * ${bar}")
    set(look "${dim}")
    if(bar LESS_EQUAL litBars)
      set(look "${lit}")
    endif()
    string(APPEND bars "  <rect x=\"10\" y=\"${y}\" width=\"6\" height=\"2\" ${look}/>\n")
  endforeach()
  configure_file("${icons}/tray-symbolic.svg.in" "${generated}/tray${litBars}-symbolic.svg" @ONLY)
  install(FILES "${generated}/tray${litBars}-symbolic.svg"
    DESTINATION "${themeFolder}/symbolic/apps" RENAME ${desktopID}-tray${litBars}-symbolic.svg
    COMPONENT wattlark)
endforeach()
find_program(RSVG_CONVERT rsvg-convert)
if(RSVG_CONVERT)
  foreach(size IN ITEMS 16 22 24 32 48 64 128 256 512)
    set(icon "${generated}/${size}.png")
    add_custom_command(OUTPUT "${icon}"
      COMMAND "${RSVG_CONVERT}" -w ${size} -h ${size} -o "${icon}" "${icons}/wattlark.svg"
      DEPENDS "${icons}/wattlark.svg" VERBATIM)
    list(APPEND generatedFiles "${icon}")
    install(FILES "${icon}"
      DESTINATION "${themeFolder}/${size}x${size}/apps" RENAME ${desktopID}.png COMPONENT wattlark)
  endforeach()
endif()

# Without the time of the build in it, the same source gives the same package.
find_program(GZIP gzip REQUIRED)
foreach(file IN ITEMS wattlark.1 debian/changelog)
  get_filename_component(name "${file}" NAME)
  add_custom_command(OUTPUT "${generated}/${name}.gz"
    COMMAND "${GZIP}" -9nc "${packaging}/${file}" > "${generated}/${name}.gz"
    DEPENDS "${packaging}/${file}" VERBATIM)
  list(APPEND generatedFiles "${generated}/${name}.gz")
endforeach()
foreach(package IN LISTS packages)
  install(FILES "${generated}/wattlark.1.gz"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" RENAME ${package}.1.gz COMPONENT ${package})
  install(FILES "${generated}/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" RENAME changelog.Debian.gz COMPONENT ${package})
endforeach()
add_custom_target(packageFiles ALL DEPENDS ${generatedFiles})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME wattlark)
set(CPACK_PACKAGE_VERSION ${versionText})
set(CPACK_PACKAGE_VENDOR "Wattlark developers")
set(CPACK_PACKAGE_CONTACT "Wattlark developers <wattlark@example.org>")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL ${packages})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(WATTLARK_WEBSITE_URL)
  set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${WATTLARK_WEBSITE_URL}")
endif()

set(about "Plug-in power meters that carry an XBee radio send samples of voltage
and current to a second XBee on a serial port. Wattlark tells the meters
apart, turns samples into volts, amps and watts, keeps demand and usage
from the last minute to the whole year, watches limits, and publishes
readings to a CSV file and web services.")
set(CPACK_COMPONENT_WATTLARK_DESCRIPTION "${about}

This package has the program with its window and notification area icon.")
set(CPACK_DEBIAN_WATTLARK_PACKAGE_NAME wattlark)
set(CPACK_DEBIAN_WATTLARK_PACKAGE_SECTION utils)
# Not linked: loaded with the first sound, or by Qt where the desktop is of that kind.
set(CPACK_DEBIAN_WATTLARK_PACKAGE_RECOMMENDS "libcanberra0, qt6-wayland, ca-certificates")
set(CPACK_DEBIAN_WATTLARK_PACKAGE_SUGGESTS "wattlark-headless")
set(CPACK_DEBIAN_WATTLARK_PACKAGE_CONTROL_EXTRA "${packaging}/debian/wattlark/postinst")

set(CPACK_COMPONENT_WATTLARK-HEADLESS_DESCRIPTION "${about}

This package has the program without a window, and a service that runs
it. It needs no graphical library.")
set(CPACK_DEBIAN_WATTLARK-HEADLESS_PACKAGE_NAME wattlark-headless)
set(CPACK_DEBIAN_WATTLARK-HEADLESS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_WATTLARK-HEADLESS_PACKAGE_DEPENDS "systemd | systemd-standalone-sysusers | systemd-sysusers")
set(CPACK_DEBIAN_WATTLARK-HEADLESS_PACKAGE_RECOMMENDS "ca-certificates")
set(CPACK_DEBIAN_WATTLARK-HEADLESS_PACKAGE_CONTROL_EXTRA
  "${packaging}/debian/wattlark-headless/postinst"
  "${packaging}/debian/wattlark-headless/prerm"
  "${packaging}/debian/wattlark-headless/postrm")
include(CPack)
