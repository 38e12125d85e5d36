# What differs between the packages; cpack reads it once for each.
list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build)
if(CPACK_GENERATOR STREQUAL DEB)
  set(components program system)
  set(CPACK_SET_DESTDIR ON)
  set(CPACK_INSTALL_PREFIX /opt/dravolt)
else()
  # All of it in one folder, wherever that is.
  set(components program archive)
endif()

set(CPACK_INSTALL_CMAKE_PROJECTS "")
foreach(component ${components})
  list(APPEND CPACK_INSTALL_CMAKE_PROJECTS ${build} dravolt ${component} /)
endforeach()
