# What a Debian package has beside what is installed elsewhere: CPack runs this when it has installed each component into
# a folder of its own, before it makes packages of them.

set(runtime ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/runtime/usr)
set(development ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/development/usr)

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(documents ${runtime}/share/doc/ombrique-contrast)
configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${documents}/changelog.Debian @ONLY)
file(GLOB pages ${runtime}/share/man/man1/*)
run(gzip -9n ${documents}/changelog.Debian ${pages})

# The second package has these in a folder of its own name.
file(COPY ${documents}/changelog.Debian.gz ${documents}/copyright DESTINATION ${development}/share/doc/libombrique-dev)

file(COPY ${CMAKE_CURRENT_LIST_DIR}/lintian/ombrique-contrast DESTINATION ${runtime}/share/lintian/overrides)
file(COPY ${CMAKE_CURRENT_LIST_DIR}/lintian/libombrique-dev DESTINATION ${development}/share/lintian/overrides)

run(chmod -R u=rwX,go=rX ${runtime}/share ${development}/share)

# Not by CPACK_STRIP_FILES, which leaves these sections and all archives as they are.
set(strip strip --remove-section=.comment --remove-section=.note)
file(GLOB_RECURSE binaries
    ${runtime}/bin/ombrique-render ${runtime}/lib/frei0r-1/*.so ${runtime}/lib/ombrique/*.plugin/Contents/Linux/*)
run(${strip} --strip-unneeded ${binaries})
file(GLOB archives ${development}/lib/*.a)
run(${strip} --strip-debug --enable-deterministic-archives ${archives})
