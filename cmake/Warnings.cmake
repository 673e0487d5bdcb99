# corvana_set_warnings(TARGET): the warnings every target of ours is built with.
option(CORVANA_WARNINGS_AS_ERRORS "Stop the build at the first warning" OFF)

function(corvana_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow)
  if(CORVANA_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
