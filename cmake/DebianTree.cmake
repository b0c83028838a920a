# CPack runs this on the tree of files that becomes the Debian package: adds and compresses what
# Debian asks for, beside what cmake --install writes.
cmake_minimum_required(VERSION 3.25)
set(packaging ${CPACK_TARVO_PACKAGING_FOLDER})
set(doc ${CPACK_TEMPORARY_DIRECTORY}/${CPACK_TARVO_DOC_FOLDER})
set(man ${CPACK_TEMPORARY_DIRECTORY}/${CPACK_TARVO_MAN_FOLDER})

# Without a name and a time in the compressed file.
function(compress)
  foreach(file ${ARGN})
    execute_process(COMMAND gzip -9 -n ${file} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endfunction()

# The licence is in `copyright`, where Debian looks for it.
function(write_copyright)
  file(READ ${doc}/LICENSE LICENSE)
  configure_file(${packaging}/debian/copyright.in ${doc}/copyright @ONLY)
  file(REMOVE ${doc}/LICENSE)
endfunction()

# The licences of what the programs hold of other packages.
function(write_notices)
  file(STRINGS ${packaging}/linux-notices.txt packages)
  foreach(package ${packages})
    configure_file(/usr/share/doc/${package}/copyright ${doc}/notices/${package}.txt COPYONLY)
  endforeach()
endfunction()

# Debian's own change log, beside the project's; SOURCE_DATE_EPOCH sets its time.
function(write_changelog)
  set(version ${CPACK_PACKAGE_VERSION})
  set(maintainer ${CPACK_DEBIAN_PACKAGE_MAINTAINER})
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
  configure_file(${packaging}/debian/changelog.in ${doc}/changelog @ONLY)
  compress(${doc}/changelog)
endfunction()

function(compress_man_pages)
  file(GLOB pages ${man}/man*/*)
  compress(${pages})
endfunction()

write_copyright()
write_notices()
write_changelog()
compress_man_pages()
