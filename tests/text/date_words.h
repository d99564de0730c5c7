#pragma once

#include "fixtures/recording_services.h"
#include "platform/locale_dates.h"
#include "text/time_seconds.h"

#include <gtest/gtest.h>

#include <string>

namespace Kestrona::Testing {

// While it lives, dates are shown and read as the user of such a locale wants them.
class DatesOf {
public:
    explicit DatesOf(DateLayout layout, std::int32_t length = 10, const std::wstring& separator = L":") {
        Platform::OverrideLocaleDates({layout, length, separator});
    }

    DatesOf(const DatesOf&) = delete;
    DatesOf& operator=(const DatesOf&) = delete;

    ~DatesOf() { Platform::ForgetLocaleDates(); }
};

inline constexpr const wchar_t* kGermanDays[] = {L"Sonntag",    L"Montag",  L"Dienstag", L"Mittwoch",
                                                 L"Donnerstag", L"Freitag", L"Samstag"};

// A process whose host has words for dates and durations.
class DateWords : public testing::Test {
protected:
    DateWords() {
        for (std::int32_t day = 0; day < 7; ++day) {
            const std::wstring name = kGermanDays[day];
            messages.texts[0x698b + day] = L"am " + name;
            messages.texts[0x6992 + day] = name.substr(0, 2);
            messages.texts[0x6999 + day] = name;
        }
        messages.texts[0x698a] = L"Unbestimmt";
        messages.texts[0x69a0] = L"Tag";
        messages.texts[0x69a1] = L"Stunden";
        messages.texts[0x69a2] = L"Tage";
        messages.texts[0x69a3] = L"Minuten";
    }

    ~DateWords() override { Text::ResetIncludeSeconds(); }

    Fixtures::FreshProcess process;
    Fixtures::RecordingMessages& messages = Fixtures::InstallRecordingMessages();
};

} // namespace Kestrona::Testing
