# Run by CPack between installing and packing: brings what was installed into the shape that Debian expects.
# Each package's files lie in a folder named after its group. The date is SOURCE_DATE_EPOCH's where that is set.
set(package_program corvana-videoid)
set(package_library libcorvana-videoid${CPACK_PACKAGE_VERSION_MAJOR})
set(package_development libcorvana-videoid-dev)
set(package_samples corvana-videoid-samples)
set(package_python python3-corvana-videoid)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(write_changelog file)
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
  file(WRITE ${file} "corvana-videoid (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What is new is told in the project's CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
  run(gzip -9nf ${file})
endfunction()

# Archives keep their symbols, without which nothing can be linked, and lose what a debugger reads.
function(strip_archives folder)
  file(GLOB_RECURSE archives ${folder}/*.a)
  foreach(archive IN LISTS archives)
    run(strip --strip-debug --enable-deterministic-archives ${archive})
  endforeach()
endfunction()

# The published TensorFlow Lite names folders of the machine that it was built on.
function(forget_search_paths folder)
  file(GLOB_RECURSE libraries ${folder}/libjnitensorflowlite.so)
  foreach(library IN LISTS libraries)
    run(chrpath --delete ${library} OUTPUT_QUIET)
    file(CHMOD ${library} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  endforeach()
endfunction()

foreach(group program library development samples python)
  set(folder ${CPACK_TEMPORARY_DIRECTORY}/${group}/usr)
  if(NOT IS_DIRECTORY ${folder})
    continue()
  endif()
  set(package ${package_${group}})
  set(papers ${folder}/share/doc/${package})
  file(COPY ${CPACK_CORVANA_PACKAGING}/debian/copyright DESTINATION ${papers})
  write_changelog(${papers}/changelog)
  if(EXISTS ${CPACK_CORVANA_PACKAGING}/debian/${package}.lintian-overrides)
    file(MAKE_DIRECTORY ${folder}/share/lintian/overrides)
    configure_file(${CPACK_CORVANA_PACKAGING}/debian/${package}.lintian-overrides
                   ${folder}/share/lintian/overrides/${package} COPYONLY)
  endif()
  strip_archives(${folder})
  forget_search_paths(${folder})
  file(GLOB pages ${folder}/share/man/man1/*.1)
  foreach(page IN LISTS pages)
    run(gzip -9nf ${page})
  endforeach()
endforeach()

# Of what is delivered, after all that was done to it.
set(root ${CPACK_TEMPORARY_DIRECTORY}/program/usr)
run(${CPACK_CORVANA_PACKAGING}/sbom ${root}/bin/videoid ${CPACK_PACKAGE_VERSION}
    OUTPUT_FILE ${root}/share/corvana-videoid/sbom.cdx.json)

# Outside the prefix, where an installation elsewhere would not put it.
file(COPY ${CPACK_CORVANA_PACKAGING}/apparmor/usr.bin.videoid
     DESTINATION ${CPACK_TEMPORARY_DIRECTORY}/program/etc/apparmor.d)
