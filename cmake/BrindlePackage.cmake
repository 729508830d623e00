# What is installed on a desktop or a Debian system besides the programs: menu entry, icons, man pages, completion and
# the package's own documents. Also the package itself, which `cpack` makes in the build folder.

set(papers ${CMAKE_BINARY_DIR}/package)

# brindle_compressed(FILE RESULT): compresses FILE in the build as Debian requires for man pages, changelogs and texts.
function(brindle_compressed file result)
    get_filename_component(name ${file} NAME)
    set(compressed ${papers}/${name}.gz)
    add_custom_command(OUTPUT ${compressed} COMMAND gzip -9n < ${file} > ${compressed} DEPENDS ${file} VERBATIM)
    set_property(GLOBAL APPEND PROPERTY BRINDLE_COMPRESSED ${compressed})
    set(${result} ${compressed} PARENT_SCOPE)
endfunction()

foreach(page brindle.1 dscl.1 nicl.1 nireport.1 niutil.1 brindle-helper.8)
    string(REGEX REPLACE ".*\\." "" section ${page})
    brindle_compressed(${CMAKE_SOURCE_DIR}/docs/man/${page} compressed)
    install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()

# The guides to which the man pages send their readers.
foreach(guide command-line scripting system-host)
    brindle_compressed(${CMAKE_SOURCE_DIR}/docs/${guide}.md compressed)
    install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/brindle)
endforeach()

install(FILES resources/completion/brindle.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME brindle)
install(FILES resources/completion/_brindle DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES resources/completion/brindle.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

# Without the window, a desktop's menu has nothing to start, and who installs that shall know it.
if(NOT BRINDLE_HAS_QT)
    install(CODE [[message(WARNING "This build has no window, because Qt 6 (qt6-base-dev, libgl-dev) was not installed "
        "or not wanted when it was configured: only the commands and scripts are installed.")]])
else()
    set(metainfo example.brindle.Brindle.metainfo.xml)
    configure_file(resources/desktop/${metainfo}.in ${papers}/${metainfo} @ONLY)
    install(FILES ${papers}/${metainfo} DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
    install(FILES resources/desktop/brindle.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
    install(FILES resources/desktop/icons/brindle.svg DESTINATION ${icons}/scalable/apps)
    foreach(size 16 24 32 48 64 128 256)
        install(FILES resources/desktop/icons/${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME brindle.png)
        # Beside the programs in the layout of an installation, too.
        configure_file(resources/desktop/icons/${size}.png
            ${CMAKE_BINARY_DIR}/share/icons/hicolor/${size}x${size}/apps/brindle.png COPYONLY)
    endforeach()
endif()

# The license in the form in which the package's copyright file quotes it.
file(READ LICENSE license)
string(REGEX MATCH "Copyright [^\n]*" copyright "${license}")
string(REGEX REPLACE "^Copyright (\\(c\\) )?" "" BRINDLE_COPYRIGHT "${copyright}")
string(REGEX REPLACE "^.*${BRINDLE_COPYRIGHT}\n+" "" license "${license}")
string(STRIP "${license}" license)
string(REGEX REPLACE "\n\n" "\n.\n" license "${license}")
string(REGEX REPLACE "\n" "\n " license "${license}")
set(BRINDLE_LICENSE " ${license}")
configure_file(resources/debian/copyright.in ${papers}/copyright @ONLY)
configure_file(resources/debian/changelog.in ${papers}/changelog @ONLY)
brindle_compressed(${papers}/changelog changelog)
install(FILES ${papers}/copyright ${changelog} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/brindle)

get_property(compressed GLOBAL PROPERTY BRINDLE_COMPRESSED)
add_custom_target(brindle_papers ALL DEPENDS ${compressed})
add_dependencies(brindle_resources brindle_papers) # so that installing builds these too

# brindle_packages(SECTION RESULT): the names in a section of packages.txt.
function(brindle_packages section result)
    file(STRINGS packages.txt lines)
    set(names)
    set(within FALSE)
    foreach(line ${lines})
        if(line MATCHES "^\\[([a-z]+)\\]")
            string(COMPARE EQUAL "${CMAKE_MATCH_1}" "${section}" within)
        elseif(within AND line MATCHES "^([a-z0-9.+-]+)")
            list(APPEND names ${CMAKE_MATCH_1})
        endif()
    endforeach()
    set(${result} ${names} PARENT_SCOPE)
endfunction()

brindle_packages(run needed)
list(REMOVE_ITEM needed grep) # essential on Debian, so packages do not declare it
brindle_packages(loaded loaded)
list(APPEND needed ${loaded})
if(BRINDLE_HAS_QT)
    brindle_packages(desktop desktop)
    list(APPEND needed ${desktop})
    brindle_packages(recommend recommended)
    list(JOIN recommended ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)
endif()
list(JOIN needed ", " CPACK_DEBIAN_PACKAGE_DEPENDS)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brindle)
set(CPACK_PACKAGE_CONTACT "The Brindle authors <support@brindle.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "administer the file sharing of one computer")
set(CPACK_PACKAGE_DESCRIPTION "One window for the folders that a computer shares over SMB and AFP, their
owners and privileges, accounts that can only connect to shares, Public
folders, and the settings of the two servers. Each task is a command, too.

Before an action does more than it looks like, Brindle says what it would do;
what was done can be undone.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_SOURCE_DIR}/cmake/BrindlePackageTools.cmake)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/resources/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Otherwise the modes of folders depend on the umask of whoever builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
include(CPack)
