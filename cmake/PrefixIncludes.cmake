# Run at installation: copies the headers (or all, if none is named) of the folder source into the folder staged, with
# "corvana/" before each include of another floor.
if(NOT headers)
  file(GLOB_RECURSE headers RELATIVE ${source} ${source}/*.h)
endif()
foreach(header IN LISTS headers)
  file(READ ${source}/${header} text)
  string(REGEX REPLACE "(#include \")(platform|inference|capture|devices)/" "\\1corvana/\\2/" text "${text}")
  file(WRITE ${staged}/${header} "${text}")
endforeach()
