# For packages that others install: harder to misuse, and nothing in them tells of the folder they were built in, so
# that the same commit gives the same bytes anywhere. Include before the first target.
option(CORVANA_DISTRIBUTION "Build for packages: hardened, without the names of this machine's folders" OFF)

if(CORVANA_DISTRIBUTION)
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -fstack-protector-strong)
  add_compile_definitions(_FORTIFY_SOURCE=2)
  add_link_options(-Wl,-z,relro,-z,now)
  # A search path to the build's own folder, though taken out at the installation, would leave its length in the layout.
  set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
endif()

# Macros of the libraries that these files call write the file's name into the program.
function(corvana_name_within_project)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
endfunction()
