# Installs what a program needs to have the module and its window in it: find_package(CorvanaVideoID). Include after
# the targets. The reference host (cameras, recognition, film) is not part of it: a program brings its own.
# Two components: `development` to build with, and `resources`, which the program videoid needs as well.
include(CMakePackageConfigHelpers)
include(InstallHeaders)

set(CORVANA_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/CorvanaVideoID)
set(CORVANA_RESOURCES_DIR ${CMAKE_INSTALL_DATADIR}/corvana-videoid)

set(installed_folders platform corvana devices/headless devices/qtquick devices/screen devices/scripted devices/system)

install(TARGETS corvana_platform corvana_sdk corvana_inference corvana_module corvana_devices_headless
                corvana_devices_qtquick corvana_devices_screen corvana_devices_scripted corvana_devices_system
        EXPORT CorvanaVideoIDTargets
        ARCHIVE COMPONENT development)
# Staged anew at each installation, so that a header that is gone stays behind nowhere.
install(CODE "file(REMOVE_RECURSE \"${PROJECT_BINARY_DIR}/include\")" COMPONENT development)
foreach(folder IN LISTS installed_folders)
  corvana_install_headers(${folder})
endforeach()
# Of the module the entry, and what a host wires; how it works inside is nobody else's business.
corvana_install_headers(capture Corvana+VideoCapture.h ControllerFactories.h)
install(DIRECTORY ${PROJECT_BINARY_DIR}/include/corvana DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/capture/resources/
        DESTINATION ${CORVANA_RESOURCES_DIR}/capture COMPONENT resources)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/devices/qtquick/qml/
        DESTINATION ${CORVANA_RESOURCES_DIR}/screen COMPONENT resources)

# A bundled TensorFlow Lite goes with the library; an installed one is found again where it is.
if(TensorFlowLite_BUNDLED)
  file(REAL_PATH "${TensorFlowLite_LIBRARY}" tflite_file)
  cmake_path(GET tflite_file FILENAME tflite_name)
  set(CORVANA_TENSORFLOW_LITE_BELOW_PREFIX "${CORVANA_PRIVATE_LIBDIR}/${tflite_name}")
else()
  set(CORVANA_TENSORFLOW_LITE_BELOW_PREFIX "")
endif()

install(EXPORT CorvanaVideoIDTargets NAMESPACE CorvanaVideoID::
        DESTINATION ${CORVANA_PACKAGE_DIR} COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/CorvanaVideoIDConfig.cmake.in
  ${PROJECT_BINARY_DIR}/CorvanaVideoIDConfig.cmake
  INSTALL_DESTINATION ${CORVANA_PACKAGE_DIR}
  PATH_VARS CORVANA_RESOURCES_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/CorvanaVideoIDConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/CorvanaVideoIDConfig.cmake ${PROJECT_BINARY_DIR}/CorvanaVideoIDConfigVersion.cmake
        DESTINATION ${CORVANA_PACKAGE_DIR} COMPONENT development)
