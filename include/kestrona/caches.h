#pragma once

#include <kestrona/export.h>

#include <string>
#include <utility>
#include <vector>

/// \file
/// Parsed classifications that a field keeps.

namespace Kestrona {

/// One entry of a SUBSTITUTE classification.
struct SubstPair {
    double Value = 0.0; ///< The value that is stored.
    std::wstring Text;  ///< The text that is shown for it.
};

/// A parsed FORMAT classification.
struct NumberFormat {
    bool Specified = false; ///< A FORMAT classification is present.
    std::wstring Format;    ///< The format text, for example "8.2".
    bool Maximum = false;   ///< The word MAX is present.
};

/// Keeps one value until it is invalidated.
template <typename T>
class CacheTemplate {
public:
    CacheTemplate() = default;
    CacheTemplate(const CacheTemplate&) = delete;
    CacheTemplate& operator=(const CacheTemplate&) = delete;
    virtual ~CacheTemplate() = default;

    /// Stores a value.
    void Set(T value) {
        value_ = std::move(value);
        HasValue = true;
    }

    /// Returns a copy of the value. Throws the wide text "No value present. Use HasValue property first"
    /// (`const wchar_t*`) when there is none.
    [[nodiscard]] T Get() const { return Peek(); }

    /// Returns the value where it stands, until the next `Set`. Throws like `Get`.
    [[nodiscard]] const T& Peek() const {
        if (!HasValue) {
            throw static_cast<const wchar_t*>(L"No value present. Use HasValue property first");
        }
        return value_;
    }

    /// Marks the value as stale.
    void Invalidate() { HasValue = false; }

    bool HasValue = false;

private:
    T value_{};
};

/// The pairs of a field's SUBSTITUTE or SUBSTITUTX classifications.
class SubstituteCache : public CacheTemplate<std::vector<SubstPair>> {};

/// A field's FORMAT classification.
class NumberFormatCache : public CacheTemplate<NumberFormat> {};

/// The name in a field's TABLE classification, "" for none.
class StringTableNameCache : public CacheTemplate<std::wstring> {};

} // namespace Kestrona
