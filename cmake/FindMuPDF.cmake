# Finds the static MuPDF library and everything it needs; defines MuPDF::MuPDF.
# Debian's mupdf.pc does not name the libraries that the static archive depends on, so the list
# stands here, in link order.
include(FindPackageHandleStandardArgs)

find_path(MuPDF_INCLUDE_DIR mupdf/fitz.h)
set(MuPDF_LIBRARIES "")
set(MuPDF_missing "")
foreach(name mupdf mupdf-third freetype harfbuzz jpeg openjp2 jbig2dec mujs gumbo crypto z m)
    find_library(MuPDF_${name}_LIBRARY ${name})
    mark_as_advanced(MuPDF_${name}_LIBRARY)
    if(MuPDF_${name}_LIBRARY)
        list(APPEND MuPDF_LIBRARIES "${MuPDF_${name}_LIBRARY}")
    else()
        list(APPEND MuPDF_missing ${name})
    endif()
endforeach()

find_package_handle_standard_args(MuPDF
    REQUIRED_VARS MuPDF_INCLUDE_DIR MuPDF_mupdf_LIBRARY
    REASON_FAILURE_MESSAGE "missing libraries: ${MuPDF_missing}")

if(MuPDF_FOUND AND NOT TARGET MuPDF::MuPDF)
    add_library(MuPDF::MuPDF INTERFACE IMPORTED)
    set_target_properties(MuPDF::MuPDF PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${MuPDF_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "${MuPDF_LIBRARIES}")
endif()
