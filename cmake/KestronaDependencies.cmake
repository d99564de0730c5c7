# Outside libraries. Only src/platform may include the headers of ICU, OpenSSL and zlib; scripts/check_layers sees to it.

find_package(Boost 1.81 REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(OpenSSL 3.0 REQUIRED COMPONENTS Crypto)
find_package(ZLIB REQUIRED)
find_package(Threads REQUIRED)

# The libraries that the data module is linked with.
add_library(kestrona_external INTERFACE)
target_link_libraries(kestrona_external INTERFACE ICU::i18n ICU::uc OpenSSL::Crypto ZLIB::ZLIB Threads::Threads)

# For the tool only.
find_package(CLI11 CONFIG REQUIRED)
find_package(nlohmann_json CONFIG REQUIRED)
find_package(fmt CONFIG REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)

# libcsv ships neither a CMake package nor a pkg-config file.
find_path(LIBCSV_INCLUDE_DIR csv.h)
find_library(LIBCSV_LIBRARY csv)
if(NOT LIBCSV_INCLUDE_DIR OR NOT LIBCSV_LIBRARY)
    message(FATAL_ERROR "libcsv was not found (Debian package libcsv-dev)")
endif()
mark_as_advanced(LIBCSV_INCLUDE_DIR LIBCSV_LIBRARY)
add_library(libcsv::libcsv UNKNOWN IMPORTED)
set_target_properties(libcsv::libcsv PROPERTIES
    IMPORTED_LOCATION "${LIBCSV_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${LIBCSV_INCLUDE_DIR}")

# What the tool exports to beside text files. Each is left out where its library is not installed.
pkg_check_modules(sqlite3 IMPORTED_TARGET sqlite3)
pkg_check_modules(xlsxwriter IMPORTED_TARGET xlsxwriter)
option(KESTRONA_SQLITE "Let the tool export to SQLite" ${sqlite3_FOUND})
option(KESTRONA_XLSX "Let the tool export to XLSX" ${xlsxwriter_FOUND})
foreach(library IN ITEMS SQLITE:sqlite3:libsqlite3-dev XLSX:xlsxwriter:libxlsxwriter-dev)
    string(REPLACE ":" ";" library "${library}")
    list(GET library 0 switch)
    list(GET library 1 module)
    list(GET library 2 package)
    if(KESTRONA_${switch} AND NOT ${module}_FOUND)
        message(FATAL_ERROR "KESTRONA_${switch} is on and ${module} was not found (Debian package ${package})")
    endif()
endforeach()

if(KESTRONA_DEVELOPER)
    find_package(GTest CONFIG REQUIRED)
    find_package(benchmark CONFIG REQUIRED)
    if(NOT sqlite3_FOUND)
        message(FATAL_ERROR "SQLite, which a benchmark compares with, was not found (Debian package libsqlite3-dev)")
    endif()
endif()
