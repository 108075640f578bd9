# Run by CPack on what it has installed for the packages: what administrators change lies in /etc there.
set(root ${CPACK_TEMPORARY_DIRECTORY}/program)
file(MAKE_DIRECTORY ${root}/etc/grouptracker)
file(RENAME ${root}/usr/share/doc/grouptracker/examples/example.toml ${root}/etc/grouptracker/example.toml)
file(REMOVE_RECURSE ${root}/usr/share/doc/grouptracker/examples)
