# Builds everything with the sanitizers named in CORVANA_SANITIZE. Include before the first target.
set(CORVANA_SANITIZE "" CACHE STRING "Sanitizers, comma separated: address,undefined | thread | empty for none")

if(CORVANA_SANITIZE)
  # An undefined behaviour that is only printed would let a test pass.
  add_compile_options(-fsanitize=${CORVANA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORVANA_SANITIZE})
endif()
