# corvana_join_files(TARGET...): compiles what lies in one folder of a target as one file. For targets of whose files most
# include nlohmann/json, CLI11, GoogleTest, GStreamer or OpenCV, which cost each of them one to four seconds. A build
# without it tells whether each file includes all that it needs.
option(CORVANA_JOIN_FILES "Compile the program's and its tests' files folder by folder: all is built in half the time" OFF)

function(corvana_join_files)
  foreach(target ${ARGN})
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${CORVANA_JOIN_FILES} UNITY_BUILD_MODE GROUP)
    # Within a joined file each file's own names are still its own, so that nothing is told by this warning.
    if(CORVANA_JOIN_FILES AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
    endif()
    get_target_property(sources ${target} SOURCES)
    foreach(source ${sources})
      get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR}/${source} DIRECTORY)
      get_filename_component(folder ${folder} NAME)
      set_property(SOURCE ${source} PROPERTY UNITY_GROUP ${folder})
    endforeach()
  endforeach()
endfunction()
