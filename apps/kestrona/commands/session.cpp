#include "commands/session.h"

#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>
#include <sys/resource.h>

namespace Kestrona::Tool {
namespace {

Host::DefaultHostOptions HostOptions() {
    Host::DefaultHostOptions options;
    options.progress = true;
    return options;
}

} // namespace

Session::Session() : host_(HostOptions()) {}

int Session::Load(const std::string& definition) {
    switch (host_.LoadDefinition(definition)) {
    case Host::LoadOutcome::Ok:
        return kExitGood;
    case Host::LoadOutcome::Unreadable:
        return kExitUnreadableInput;
    case Host::LoadOutcome::Findings:
    case Host::LoadOutcome::AlreadyLoaded:
        break;
    }
    return kExitFindings;
}

int Session::Load(const std::string& definition, const KeyOptions& key) {
    const int code = SetUpKey(key);
    return code == kExitGood ? Load(definition) : code;
}

Data::MemoryResident::MemoryResidentData& Session::Store() {
    return host_.Store();
}

std::int32_t Session::FindFormat(const std::string& name) {
    auto& store = Store();
    std::string known;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const wchar_t* format_name = store.GetDbName(format);
        const std::string text = format_name == nullptr ? std::string() : ToUtf8(format_name);
        if (text == name || ToUtf8(store.GetDbDisplayName(format)) == name) {
            return format;
        }
        known += (known.empty() ? "" : ", ") + text;
    }
    fmt::print(stderr, "kestrona: error: no format is called '{}'; there are {}\n", name, known);
    return -1;
}

std::int32_t Session::FindField(std::int32_t format, const std::string& name) {
    auto& store = Store();
    std::string known;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const std::string text = ToUtf8(store.GetColumnName(format, field));
        if (text == name) {
            return field;
        }
        known += (known.empty() ? "" : ", ") + text;
    }
    fmt::print(stderr, "kestrona: error: no field of the format is called '{}'; there are {}\n", name, known);
    return -1;
}

std::size_t PeakMemory() {
    rusage usage{};
    return getrusage(RUSAGE_SELF, &usage) == 0 ? static_cast<std::size_t>(usage.ru_maxrss) * 1024 : 0;
}

} // namespace Kestrona::Tool
