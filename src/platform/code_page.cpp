#include "platform/code_page.h"

#include "platform/icu_memory.h"

#include <kestrona/unicode.h>

#include <unicode/ucnv.h>

#include <cassert>
#include <cstdint>
#include <memory>

namespace Kestrona::Platform {

namespace {

constexpr const char* kWestern = "windows-1252";

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

using Converter = std::unique_ptr<UConverter, ConverterCloser>;

Converter OpenConverter(const std::string& code_page) {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(code_page.c_str(), &status));
    ThrowIfNoMemory(status);
    if (U_FAILURE(status)) {
        status = U_ZERO_ERROR;
        converter.reset(ucnv_open(kWestern, &status));
        ThrowIfNoMemory(status);
    }
    return converter;
}

} // namespace

std::wstring DecodeBytes(std::string_view bytes, const std::string& code_page) {
    const Converter converter = OpenConverter(code_page);
    assert(converter != nullptr);
    // A byte gives at most two units, so one call does it.
    std::u16string units(bytes.size() * 2, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = ucnv_toUChars(converter.get(), units.data(), static_cast<std::int32_t>(units.size()),
                                              bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
    ThrowIfNoMemory(status);
    units.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return FromUtf16(units);
}

} // namespace Kestrona::Platform
