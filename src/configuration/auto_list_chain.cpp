#include "configuration/auto_list_chain.h"

#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/format_text.h"

#include <kestrona/classification_parsers.h>
#include <kestrona/services.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;
using Parsers::ClassificationMatch;
using Parsers::ClassificationParser_AUTO_LIST;

namespace {

std::uint64_t KeyOf(TableColumn place) {
    return (static_cast<std::uint64_t>(static_cast<std::uint32_t>(place.format)) << 32U) |
           static_cast<std::uint32_t>(place.field);
}

} // namespace

std::wstring AutoListContext(IMemoryResidentData& store, TableColumn place) {
    return Platform::FormatText(Message(kMsgInAutoList) + L" " + Message(kMsgAutoListType),
                                store.GetDbName(place.format), store.GetColumnName(place.format, place.field));
}

bool AutoListChain::FindEnd(TableColumn place, TableColumn& end) {
    ++walk_;
    while (true) {
        const auto [entry, is_new] = links_.try_emplace(KeyOf(place));
        Link& link = entry->second;
        if (is_new && !Follow(place, link)) {
            links_.erase(entry);
            return false;
        }
        link.walk = walk_;
        if (!link.leads_on || WasPassed(link.next)) {
            end = place;
            return true;
        }
        place = link.next;
    }
}

void AutoListChain::Changed(TableColumn place) {
    links_.erase(KeyOf(place));
}

bool AutoListChain::Follow(TableColumn place, Link& link) {
    static const ClassificationParser_AUTO_LIST parser;
    const std::wstring text = store_.GetDbClassString(place.format, place.field);
    const ClassificationMatch match = parser.MatchFirst(text);
    link.leads_on = match.Matched;
    if (!match.Matched) {
        return true;
    }
    const auto context = [this, &place] {
        return AutoListContext(store_, place);
    };
    KSDLL_WriteDebug(context());
    return lookup_.FindReferenceFormatField(
        match.Values.at(parser.get_TableNameKey()), match.Values.at(parser.get_FieldNameKey()), context, Datasets::Own,
        ClassificationAt(text, static_cast<std::size_t>(match.Start)), place.format, link.next);
}

bool AutoListChain::WasPassed(TableColumn place) const {
    const auto found = links_.find(KeyOf(place));
    return found != links_.end() && found->second.walk == walk_;
}

} // namespace Kestrona::Configuration
