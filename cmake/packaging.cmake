# Desktop integration (application id, icon, menu entry, AppStream data, man
# page, shell completion) installed with GNUInstallDirs, and the Debian package
# that carries the same tree. Both `cmake --install` and `cpack` use these rules.
include(GNUInstallDirs)

set(TRESTLE_APP_ID com.fenwright.Trestle)
set(TRESTLE_HOMEPAGE https://fenwright.example/trestle)
set(TRESTLE_MAINTAINER "Fenwright <trestle@fenwright.example>")
# The date of the release PROJECT_VERSION names; it moves with the version, not
# with the build, so two builds of one version give the same files.
set(TRESTLE_RELEASE_DATE 2026-11-23)
set(TRESTLE_RELEASE_DATE_RFC2822 "Mon, 23 Nov 2026 12:00:00 +0000")
set(TRESTLE_MAN_DATE ${TRESTLE_RELEASE_DATE})
set(TRESTLE_DEB_RELEASE 1)
set(TRESTLE_DEB_VERSION ${PROJECT_VERSION}-${TRESTLE_DEB_RELEASE})
# Sizes of the bitmaps beside the scalable icon, for desktops that want them.
set(TRESTLE_ICON_SIZES 16 22 24 32 48 64 128 256)

set(dist ${PROJECT_SOURCE_DIR}/dist)
set(dist_out ${PROJECT_BINARY_DIR}/dist)
set(app_svg ${dist}/${TRESTLE_APP_ID}.svg)

configure_file(${dist}/${TRESTLE_APP_ID}.metainfo.xml.in ${dist_out}/${TRESTLE_APP_ID}.metainfo.xml @ONLY)
configure_file(${dist}/trestle.1.in ${dist_out}/trestle.1 @ONLY)
configure_file(${dist}/changelog.Debian.in ${dist_out}/changelog.Debian @ONLY)

# The bitmaps are drawn from the SVG during the build by a small tool of our own.
add_executable(trestle-iconrender ${dist}/iconrender.cpp)
target_link_libraries(trestle-iconrender PRIVATE trestle_common Qt6::Gui Qt6::Svg)
set(icon_pngs)
foreach(size IN LISTS TRESTLE_ICON_SIZES)
  list(APPEND icon_pngs ${dist_out}/icons/${size}x${size}/${TRESTLE_APP_ID}.png)
endforeach()
add_custom_command(OUTPUT ${icon_pngs}
  COMMAND trestle-iconrender ${app_svg} ${dist_out}/icons ${TRESTLE_ICON_SIZES}
  DEPENDS trestle-iconrender ${app_svg}
  COMMENT "Rendering the application icon")

# Debian wants the man page and the changelog compressed, without a time stamp.
add_custom_command(OUTPUT ${dist_out}/trestle.1.gz ${dist_out}/changelog.Debian.gz
  COMMAND gzip -9nkf ${dist_out}/trestle.1 ${dist_out}/changelog.Debian
  DEPENDS ${dist_out}/trestle.1 ${dist_out}/changelog.Debian
  COMMENT "Compressing the man page and the changelog")
add_custom_target(trestle_dist ALL DEPENDS ${icon_pngs} ${dist_out}/trestle.1.gz ${dist_out}/changelog.Debian.gz)

install(FILES ${dist}/${TRESTLE_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${dist_out}/${TRESTLE_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${app_svg} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size IN LISTS TRESTLE_ICON_SIZES)
  install(FILES ${dist_out}/icons/${size}x${size}/${TRESTLE_APP_ID}.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES ${dist_out}/trestle.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${dist}/trestle.bash-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME trestle)
install(FILES ${dist}/copyright ${dist_out}/changelog.Debian.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/trestle)
install(FILES ${dist}/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME trestle)

# Pictures of the program for the AppStream screenshots, published under the
# homepage's /screenshots path. Made on demand from the built program, never committed.
set(shots ${PROJECT_BINARY_DIR}/screenshots)
add_custom_target(trestle_screenshots
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${shots}/home
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen XDG_DATA_HOME=${shots}/home/data
          XDG_CONFIG_HOME=${shots}/home/config $<TARGET_FILE:trestle> --screenshot ${shots}/hub.png hub --size 1600x1000
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen XDG_DATA_HOME=${shots}/home/data
          XDG_CONFIG_HOME=${shots}/home/config $<TARGET_FILE:trestle> --screenshot ${shots}/payapps.png payapps 2 --size 1600x1000
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen XDG_DATA_HOME=${shots}/home/data
          XDG_CONFIG_HOME=${shots}/home/config $<TARGET_FILE:trestle> --screenshot ${shots}/estimates.png estimates 1 --size 1600x1000
  DEPENDS trestle
  COMMENT "Taking the screenshots for the AppStream data into ${shots}")

# The Debian package: `cpack` in a configured tree, or scripts/package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME trestle)
set(CPACK_PACKAGE_VENDOR Fenwright)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${TRESTLE_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "back office for a small construction company")
# The long description, wrapped for an 80-column terminal.
string(JOIN "\n" CPACK_PACKAGE_DESCRIPTION
  "Trestle runs a small construction company's back office on one computer,"
  "with no server and no network. Everything typed is saved at once."
  ""
  "It keeps estimates and assemblies, contracts and change orders, progress"
  "billing with retainage, AIA-style pay applications and lien waivers,"
  "budgets and job cost, daily logs, timecards, equipment, a schedule, plan"
  "sheets with markups, bidding and subcontractor compliance. One installation"
  "holds any number of companies, each a separate set of books."
  ""
  "The same program makes backups, QuickBooks exports and PDF reports from"
  "the command line, for scripts and nightly jobs.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${TRESTLE_DEB_RELEASE})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${TRESTLE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${TRESTLE_HOMEPAGE})
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# The linked libraries come from dpkg-shlibdeps; what Qt loads at run time
# without linking it must be named: the platform plugins (xcb), the image
# formats photos come in (webp, tiff), the SVG icon engine, and the fonts
# printouts and the sample documents are set in.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, qt6-image-formats-plugins, libqt6svg6, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
include(CPack)
