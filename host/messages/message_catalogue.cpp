#include "messages/message_table.h"
#include "user_name.h"

#include <kestrona/host/message_catalogue.h>

#include <algorithm>
#include <array>

namespace Kestrona::Host {

namespace {

using Messages::NumberedText;

std::array<std::span<const NumberedText>, 3> Tables() {
    return {Messages::LoadTexts(), Messages::ResolutionTexts(), Messages::ValueTexts()};
}

} // namespace

std::wstring MessageText(std::int32_t number) {
    if (number == kUserNameMessage) {
        return UserName();
    }
    for (const std::span<const NumberedText> table : Tables()) {
        const auto found = std::ranges::lower_bound(table, number, {}, &NumberedText::number);
        if (found != table.end() && found->number == number) {
            return found->text;
        }
    }
    return {};
}

std::vector<std::int32_t> MessageNumbers() {
    std::vector<std::int32_t> numbers{kUserNameMessage};
    for (const std::span<const NumberedText> table : Tables()) {
        for (const NumberedText& entry : table) {
            numbers.push_back(entry.number);
        }
    }
    return numbers;
}

} // namespace Kestrona::Host
