# corvana_install_headers(FOLDER [HEADER...]): installs the headers of src/FOLDER, or those named, below corvana/ in the
# include folder. In the source tree a floor is included as "platform/…"; elsewhere that name belongs to nobody, so the
# copies say "corvana/platform/…".
set(_corvana_prefix_includes ${CMAKE_CURRENT_LIST_DIR}/PrefixIncludes.cmake)

function(corvana_install_headers folder)
  set(place ${folder})
  if(folder STREQUAL "corvana")
    set(place "")
  endif()
  set(staged ${PROJECT_BINARY_DIR}/include/corvana/${place})
  install(CODE "
    set(source \"${PROJECT_SOURCE_DIR}/src/${folder}\")
    set(staged \"${staged}\")
    set(headers \"${ARGN}\")
    include(\"${_corvana_prefix_includes}\")" COMPONENT development)
endfunction()
