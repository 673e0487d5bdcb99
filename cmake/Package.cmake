# Debian packages, by CPack. tools/package runs it.
if(NOT EXISTS /etc/debian_version)
  return()
endif()
set(files ${PROJECT_SOURCE_DIR}/packaging/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvana-videoid)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "Corvana Video ID maintainers <videoid@corvana.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 2) # fixed, since the bytes depend on it
set(CPACK_PRE_BUILD_SCRIPTS ${files}/finish.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(groups program library development samples)
if(CORVANA_BUILD_PYTHON)
  list(APPEND groups python)
endif()
set(CPACK_COMPONENTS_ALL ${groups} resources)
set(CPACK_COMPONENT_RESOURCES_GROUP program)
foreach(component IN LISTS groups)
  string(TOUPPER ${component} name)
  set(CPACK_COMPONENT_${name}_GROUP ${component})
endforeach()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# What the libraries are is read off the program; what they load when it runs, tools/setup knows.
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/setup --print run
                OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" runtime "${runtime}")
list(FILTER runtime EXCLUDE REGEX "^lib(gst|tess|lept|pocket|sphinx|opencv|zxing|icu|ssl|free|flite|sample|gomp|qt6[^s])")
list(REMOVE_ITEM runtime gstreamer1.0-espeak)
list(JOIN runtime ", " runtime)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME corvana-videoid)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
if(TensorFlowLite_BUNDLED)
  cmake_path(GET TensorFlowLite_LIBRARY PARENT_PATH CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS)
endif()
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${runtime}")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS gstreamer1.0-espeak)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "apparmor, corvana-videoid-samples, tesseract-ocr-script-latn, tpm2-openssl")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_CONTROL_EXTRA 
    ${files}/conffiles ${files}/postinst ${files}/prerm ${files}/postrm)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "video identification: person, card and voice in one film
Proves in one continuous video that a person and the identity card they showed
earlier belong together: the user looks into the camera, shows the card's
front, turns it over, and reads a text aloud. Runs on a kiosk with a camera,
or on a recorded session with none.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libcorvana-videoid${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${files}/triggers)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "corvana-videoid (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "video identification from C
Runs enrolments, identifications and checks of records as processes of their
own, with JSON in and out, and hands on events and pictures while they run.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libcorvana-videoid-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "corvana-videoid (= ${PROJECT_VERSION}), \
libcorvana-videoid${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}), libexpected-dev, libicu-dev, \
libopencv-dev, qt6-base-dev, qt6-declarative-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "video identification in a program of one's own
The C interface, and headers and libraries of the module and its window, with a
CMake package, for a host that brings its own camera and recognition, and
examples of both.")

set(CPACK_DEBIAN_SAMPLES_PACKAGE_NAME corvana-videoid-samples)
set(CPACK_DEBIAN_SAMPLES_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_SAMPLES_PACKAGE_RECOMMENDS corvana-videoid)
set(CPACK_DEBIAN_SAMPLES_DESCRIPTION "recorded session to try video identification with
A made film of a person who looks into the camera, shows both sides of a
fictitious identity card and reads a text, with photos of that card: a whole
identification runs on it, without a camera.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-corvana-videoid)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
# By hand, since dpkg-shlibdeps doesn't know the library of a package that is only being made.
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "libc6, python3 (>= 3.10), python3-cffi-backend, python3-numpy, \
libcorvana-videoid${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "corvana-videoid (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS corvana-videoid-samples)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${files}/python/postinst ${files}/python/prerm)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "video identification from Python
Runs enrolments, identifications and checks of records as processes of their
own, and hands on events, pictures and results as Python's types.")

set(CPACK_CORVANA_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)
include(CPack)
