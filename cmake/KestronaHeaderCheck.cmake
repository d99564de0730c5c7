# header_check: every public header compiles alone, and twice over.

add_library(header_check OBJECT)
target_include_directories(header_check PRIVATE
    "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include" "${PROJECT_SOURCE_DIR}/host/include")
target_link_libraries(header_check PRIVATE kestrona_options)

foreach(root IN ITEMS "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/host/include" "${PROJECT_BINARY_DIR}/include")
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${root}" "${root}/kestrona/*.h")
    foreach(header IN LISTS headers)
        string(MAKE_C_IDENTIFIER "${header}" identifier)
        set(source "${PROJECT_BINARY_DIR}/header_check/${identifier}.cpp")
        file(CONFIGURE OUTPUT "${source}" CONTENT "#include <${header}>\n#include <${header}>\n")
        target_sources(header_check PRIVATE "${source}")
    endforeach()
endforeach()
