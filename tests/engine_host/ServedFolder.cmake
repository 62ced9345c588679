# cmake -DFOLDER=... -P ServedFolder.cmake
#
# Fails unless the folder that the page is served from holds plain files alone, and no folder beside it has a name that
# begins with its name: an address may lead there.
file(GLOB beside "${FOLDER}?*")
if(beside)
  message(FATAL_ERROR "Beside ${FOLDER} would be served: ${beside}")
endif()
file(GLOB_RECURSE served LIST_DIRECTORIES true "${FOLDER}/*")
list(LENGTH served count)
if(count LESS 10)
  message(FATAL_ERROR "${FOLDER} holds no page.")
endif()
foreach(path IN LISTS served)
  if(IS_SYMLINK "${path}")
    message(FATAL_ERROR "${path} leads elsewhere.")
  endif()
endforeach()
