# Finds the headers of ONNX Runtime, the distribution's before those that script/fetch-models put
# into the cache; defines ONNXRuntime::Headers and ONNXRuntime_SONAME. The library is not linked:
# programs load it by that name at the first search, and do without when it is not there.
include(FetchedFiles)
include(FindPackageHandleStandardArgs)

find_path(ONNXRuntime_INCLUDE_DIR onnxruntime_cxx_api.h
    PATHS "${MURKWELL_FETCHED}/onnxruntime/include"
    PATH_SUFFIXES onnxruntime onnxruntime/core/session)
find_library(ONNXRuntime_LIBRARY NAMES onnxruntime libonnxruntime.so.1
    PATHS "${MURKWELL_FETCHED}/onnxruntime/lib")
mark_as_advanced(ONNXRuntime_INCLUDE_DIR ONNXRuntime_LIBRARY)

find_package_handle_standard_args(ONNXRuntime
    REQUIRED_VARS ONNXRuntime_INCLUDE_DIR ONNXRuntime_LIBRARY
    REASON_FAILURE_MESSAGE "text will be read by Tesseract alone and no faces found \
(install libonnxruntime-dev or run script/fetch-models)")

if(ONNXRuntime_FOUND AND NOT TARGET ONNXRuntime::Headers)
    execute_process(COMMAND "${CMAKE_OBJDUMP}" -p "${ONNXRuntime_LIBRARY}"
        OUTPUT_VARIABLE ONNXRuntime_header)
    string(REGEX MATCH "SONAME +([^\n]+)" ONNXRuntime_header "${ONNXRuntime_header}")
    set(ONNXRuntime_SONAME "${CMAKE_MATCH_1}")
    add_library(ONNXRuntime::Headers INTERFACE IMPORTED)
    set_target_properties(ONNXRuntime::Headers PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${ONNXRuntime_INCLUDE_DIR}")
endif()
