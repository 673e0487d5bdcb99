# Installs a bundled TensorFlow Lite beside the program and lets installed programs find it, wherever the prefix is moved.
# Include after find_package(TensorFlowLite) and before the first target.
include(GNUInstallDirs)

if(TensorFlowLite_BUNDLED)
  set(CORVANA_PRIVATE_LIBDIR "${CMAKE_INSTALL_LIBDIR}/corvana-videoid")
  file(REAL_PATH "${TensorFlowLite_LIBRARY}" _tflite_file)
  install(FILES "${TensorFlowLite_LIBRARY}" "${_tflite_file}" DESTINATION "${CORVANA_PRIVATE_LIBDIR}"
    PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
    COMPONENT resources)
  file(RELATIVE_PATH _tflite_from_bin "/${CMAKE_INSTALL_BINDIR}" "/${CORVANA_PRIVATE_LIBDIR}")
  list(APPEND CMAKE_INSTALL_RPATH "$ORIGIN/${_tflite_from_bin}")
endif()
