# corvana_library(NAME SOURCE...): one floor of the house, or a room of it. The target is corvana_NAME, so that it meets
# no other project's; who links it says CorvanaVideoID::NAME, in this build as after an installation.
include(Warnings)

function(corvana_library name)
  add_library(corvana_${name} STATIC ${ARGN})
  add_library(CorvanaVideoID::${name} ALIAS corvana_${name})
  set_target_properties(corvana_${name} PROPERTIES EXPORT_NAME ${name})
  corvana_set_warnings(corvana_${name})
endfunction()
