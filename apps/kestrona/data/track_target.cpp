#include "data/track_target.h"

#include "data/field_names.h"
#include "schema/class_names.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;
using Tracking::Conditions::ITrackingCondition;

constexpr std::string_view kClassPrefix = "class:";

class IsField : public ITrackingCondition {
public:
    explicit IsField(TableColumn place) : place_(place) {}

    bool Test(IMemoryResidentData& /*store*/, std::int32_t format, std::int32_t field) override {
        return place_ == TableColumn{format, field};
    }

private:
    TableColumn place_;
};

class HasClass : public ITrackingCondition {
public:
    explicit HasClass(Class c) : class_(c) {}

    bool Test(IMemoryResidentData& store, std::int32_t format, std::int32_t field) override {
        return store.ClassDefined(format, field, class_);
    }

private:
    Class class_;
};

/// Either name may hold dots: the first division that names a field counts.
std::unique_ptr<ITrackingCondition> ParseField(IMemoryResidentData& store, std::string_view text, Problem& problem) {
    std::int32_t format = -1;
    for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.', dot + 1)) {
        const std::int32_t named = FormatNamed(store, text.substr(0, dot));
        format = named >= 0 ? named : format;
        const std::int32_t field = named >= 0 ? FieldNamed(store, named, text.substr(dot + 1)) : -1;
        if (field >= 0) {
            return std::make_unique<IsField>(TableColumn{named, field});
        }
    }
    problem.code = Code::BadTarget;
    problem.what =
        format >= 0
            ? fmt::format("'{}' names no field of {}", text, ToUtf8(store.GetDbName(format)))
            : fmt::format("'{}' is not of the form FORMAT.FIELD or class:NAME, or no format is so called", text);
    return nullptr;
}

} // namespace

std::unique_ptr<ITrackingCondition> ParseTrackTarget(IMemoryResidentData& store, std::string_view text,
                                                     Problem& problem) {
    if (!text.starts_with(kClassPrefix)) {
        return ParseField(store, text, problem);
    }
    const std::string_view name = text.substr(kClassPrefix.size());
    const std::optional<Class> c = ClassNamed(name);
    if (!c) {
        problem = {Code::BadTarget, fmt::format("no class is called '{}'", name)};
        return nullptr;
    }
    return std::make_unique<HasClass>(*c);
}

} // namespace Kestrona::Tool
