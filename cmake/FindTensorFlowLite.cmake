# Finds TensorFlow Lite's C API and defines the target TensorFlowLite::C.
#
# Looked for in this order:
#   1. TENSORFLOW_LITE_ROOT, if given: only there (FOLDER/include/tensorflow/lite/c/c_api.h, FOLDER/lib/...)
#   2. an installed TensorFlow Lite with its C headers, if it attaches no delegate by itself
#   3. third_party/tensorflow-lite in this tree, which tools/setup fills
#
# Sets TensorFlowLite_FOUND, and TensorFlowLite_BUNDLED when the library is not the system's and so has to be
# installed with the program (see InstallTensorFlowLite.cmake).

set(TENSORFLOW_LITE_ROOT "" CACHE PATH "Folder of TensorFlow Lite: include/ and lib/. Empty: system, then third_party/")

set(_tflite_check ${CMAKE_CURRENT_LIST_DIR})
set(_tflite_header tensorflow/lite/c/c_api.h)
set(_tflite_names tensorflowlite_c tensorflow-lite tensorflowlite jnitensorflowlite)
set(_tflite_provisioned "${CMAKE_CURRENT_LIST_DIR}/../third_party/tensorflow-lite")
cmake_path(NORMAL_PATH _tflite_provisioned)

# Nothing is cached between runs: the setup may have been run since, or the root may have changed.
unset(TensorFlowLite_INCLUDE_DIR CACHE)
unset(TensorFlowLite_LIBRARY CACHE)
unset(CORVANA_SYSTEM_TENSORFLOW_LITE_USABLE CACHE)

macro(_tflite_look_in folder)
  find_path(TensorFlowLite_INCLUDE_DIR ${_tflite_header} PATHS "${folder}" PATH_SUFFIXES include NO_DEFAULT_PATH)
  find_library(TensorFlowLite_LIBRARY NAMES ${_tflite_names} PATHS "${folder}" PATH_SUFFIXES lib lib64 NO_DEFAULT_PATH)
endmacro()

# Sets the variable to TRUE when the library that was found attaches a delegate to an interpreter that asked for none.
function(_tflite_attaches_delegate result)
  set(${result} FALSE PARENT_SCOPE)
  if(CMAKE_CROSSCOMPILING)
    message(STATUS "TensorFlow Lite: whether it attaches a delegate by itself can't be tried here; ctest on the device says")
    return()
  endif()
  unset(_tflite_run CACHE)
  unset(_tflite_compiled CACHE)
  try_run(_tflite_run _tflite_compiled ${CMAKE_BINARY_DIR}/attaches_delegate
    ${_tflite_check}/tensorflow-lite/attaches_delegate.cpp
    CMAKE_FLAGS "-DINCLUDE_DIRECTORIES=${TensorFlowLite_INCLUDE_DIR}"
    LINK_LIBRARIES ${TensorFlowLite_LIBRARY}
    ARGS ${_tflite_check}/../src/engine/resources/face_detection_short_range.tflite)
  if(_tflite_compiled AND _tflite_run EQUAL 1)
    set(${result} TRUE PARENT_SCOPE)
  endif()
  unset(_tflite_run CACHE)
  unset(_tflite_compiled CACHE)
endfunction()

# An installed library counts only if the C functions are in it: some builds export the C++ interpreter alone.
macro(_tflite_look_in_system)
  find_path(TensorFlowLite_INCLUDE_DIR ${_tflite_header})
  find_library(TensorFlowLite_LIBRARY NAMES ${_tflite_names})
  if(TensorFlowLite_INCLUDE_DIR AND TensorFlowLite_LIBRARY)
    include(CheckCXXSourceCompiles)
    set(CMAKE_REQUIRED_INCLUDES ${TensorFlowLite_INCLUDE_DIR})
    set(CMAKE_REQUIRED_LIBRARIES ${TensorFlowLite_LIBRARY})
    check_cxx_source_compiles("
      #include <tensorflow/lite/c/c_api.h>
      #include <tensorflow/lite/delegates/xnnpack/xnnpack_delegate.h>
      int main() {
        TfLiteXNNPackDelegateDelete(TfLiteXNNPackDelegateCreate(nullptr));
        return TfLiteInterpreterCreate(nullptr, nullptr) != nullptr;
      }" CORVANA_SYSTEM_TENSORFLOW_LITE_USABLE)
    unset(CMAKE_REQUIRED_INCLUDES)
    unset(CMAKE_REQUIRED_LIBRARIES)
  endif()
  if(CORVANA_SYSTEM_TENSORFLOW_LITE_USABLE)
    _tflite_attaches_delegate(_tflite_delegates)
    if(_tflite_delegates)
      message(STATUS "TensorFlow Lite: ${TensorFlowLite_LIBRARY} attaches a delegate by itself and is left alone")
      unset(CORVANA_SYSTEM_TENSORFLOW_LITE_USABLE CACHE)
    endif()
  endif()
  if(NOT CORVANA_SYSTEM_TENSORFLOW_LITE_USABLE)
    unset(TensorFlowLite_INCLUDE_DIR CACHE)
    unset(TensorFlowLite_LIBRARY CACHE)
  endif()
endmacro()

set(TensorFlowLite_BUNDLED FALSE)
if(TENSORFLOW_LITE_ROOT)
  _tflite_look_in("${TENSORFLOW_LITE_ROOT}")
  set(TensorFlowLite_BUNDLED TRUE)
  if(TensorFlowLite_INCLUDE_DIR AND TensorFlowLite_LIBRARY)
    _tflite_attaches_delegate(_tflite_delegates)
    if(_tflite_delegates)
      message(WARNING "The TensorFlow Lite in ${TENSORFLOW_LITE_ROOT} attaches a delegate by itself: faces will lie at \
other distances than those the thresholds were measured with. Take a build that attaches none.")
    endif()
  endif()
else()
  _tflite_look_in_system()
  if(NOT TensorFlowLite_LIBRARY)
    _tflite_look_in("${_tflite_provisioned}")
    set(TensorFlowLite_BUNDLED TRUE)
  endif()
endif()

if(TENSORFLOW_LITE_ROOT)
  set(_tflite_advice "No TensorFlow Lite (include/${_tflite_header} and its library in lib/) in \
TENSORFLOW_LITE_ROOT=${TENSORFLOW_LITE_ROOT}: correct the folder, or leave it out and run tools/setup.")
else()
  set(_tflite_advice "TensorFlow Lite is missing: run tools/setup, which fetches it into third_party/.")
endif()
if(TensorFlowLite_FIND_REQUIRED AND NOT (TensorFlowLite_INCLUDE_DIR AND TensorFlowLite_LIBRARY))
  message(FATAL_ERROR "${_tflite_advice}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(TensorFlowLite
  REQUIRED_VARS TensorFlowLite_LIBRARY TensorFlowLite_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "${_tflite_advice}")
mark_as_advanced(TensorFlowLite_INCLUDE_DIR TensorFlowLite_LIBRARY)

if(TensorFlowLite_FOUND AND NOT TARGET TensorFlowLite::C)
  add_library(TensorFlowLite::C SHARED IMPORTED)
  set_target_properties(TensorFlowLite::C PROPERTIES
    IMPORTED_LOCATION "${TensorFlowLite_LIBRARY}"
    # The published library carries no SONAME: linked by its path, that path would be written into the programs.
    IMPORTED_NO_SONAME TRUE
    INTERFACE_INCLUDE_DIRECTORIES "${TensorFlowLite_INCLUDE_DIR}")
endif()
