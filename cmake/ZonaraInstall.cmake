# What a Linux desktop needs beside the binary and the catalogue, each where
# the XDG and Debian conventions look for it.

set(ZONARA_APP_ID io.github.zonara.Zonara)
set(ZONARA_LINUX_DIR ${PROJECT_SOURCE_DIR}/resources/linux)
set(ZONARA_LINUX_BUILD_DIR ${PROJECT_BINARY_DIR}/linux)
set(ZONARA_ZSH_COMPLETION_DIR "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" CACHE STRING
    "Where the zsh completion goes (Debian's zsh reads vendor-completions)")
# SOURCE_DATE_EPOCH, when set, makes the date reproducible.
string(TIMESTAMP today "%Y-%m-%d" UTC)
set(ZONARA_RELEASE_DATE "${today}" CACHE STRING "Date of this release in the metainfo (YYYY-MM-DD)")
option(ZONARA_DEBIAN_FILES "Install the Debian changelog and lintian overrides (for the .deb)" OFF)

configure_file(${ZONARA_LINUX_DIR}/${ZONARA_APP_ID}.metainfo.xml.in
               ${ZONARA_LINUX_BUILD_DIR}/${ZONARA_APP_ID}.metainfo.xml @ONLY)

# The man page is written in roff by hand; only its version and paths are filled in.
set(ZONARA_DATADIR ${CMAKE_INSTALL_FULL_DATADIR})
configure_file(${ZONARA_LINUX_DIR}/zonara.1 ${ZONARA_LINUX_BUILD_DIR}/zonara.1 @ONLY)
find_program(GZIP_PROGRAM gzip REQUIRED)
add_custom_command(
    OUTPUT ${ZONARA_LINUX_BUILD_DIR}/zonara.1.gz
    COMMAND ${GZIP_PROGRAM} -9 -n -f -k ${ZONARA_LINUX_BUILD_DIR}/zonara.1
    DEPENDS ${ZONARA_LINUX_BUILD_DIR}/zonara.1
    COMMENT "Compressing the man page"
    VERBATIM)
set(linux_generated ${ZONARA_LINUX_BUILD_DIR}/zonara.1.gz)
if(ZONARA_DEBIAN_FILES)
    add_custom_command(
        OUTPUT ${ZONARA_LINUX_BUILD_DIR}/changelog.Debian.gz
        COMMAND ${GZIP_PROGRAM} -9 -n -c ${PROJECT_SOURCE_DIR}/cmake/debian/changelog
                > ${ZONARA_LINUX_BUILD_DIR}/changelog.Debian.gz
        DEPENDS ${PROJECT_SOURCE_DIR}/cmake/debian/changelog
        VERBATIM)
    list(APPEND linux_generated ${ZONARA_LINUX_BUILD_DIR}/changelog.Debian.gz)
endif()
add_custom_target(zonara_linux_files ALL DEPENDS ${linux_generated})

install(FILES ${ZONARA_LINUX_DIR}/${ZONARA_APP_ID}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${ZONARA_LINUX_BUILD_DIR}/${ZONARA_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${ZONARA_LINUX_DIR}/${ZONARA_APP_ID}.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${ZONARA_LINUX_DIR}/${ZONARA_APP_ID}-symbolic.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps)
install(FILES ${ZONARA_LINUX_BUILD_DIR}/zonara.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${ZONARA_LINUX_DIR}/completions/zonara.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zonara)
install(FILES ${ZONARA_LINUX_DIR}/completions/_zonara DESTINATION ${ZONARA_ZSH_COMPLETION_DIR})
install(FILES ${ZONARA_LINUX_DIR}/completions/zonara.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES ${ZONARA_LINUX_DIR}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zonara)
if(ZONARA_DEBIAN_FILES)
    install(FILES ${ZONARA_LINUX_BUILD_DIR}/changelog.Debian.gz
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zonara)
    install(FILES ${ZONARA_LINUX_DIR}/zonara.lintian-overrides
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME zonara)
endif()

# The bus starts the binary of the prefix it is installed to, which
# "cmake --install --prefix" may choose only now.
install(CODE "
    get_filename_component(prefix \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
    set(ZONARA_INSTALLED_BINARY \"\${prefix}/${CMAKE_INSTALL_BINDIR}/zonara\")
    set(service \"\$ENV{DESTDIR}\${prefix}/${CMAKE_INSTALL_DATADIR}/dbus-1/services/${ZONARA_APP_ID}.service\")
    message(STATUS \"Installing: \${service}\")
    configure_file(\"${ZONARA_LINUX_DIR}/${ZONARA_APP_ID}.service.in\" \"\${service}\" @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${service}\")
")
