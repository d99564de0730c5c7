#include "configuration/auto_list_chain.h"

#include "configuration/messages.h"
#include "configuration/reference.h"
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

const ClassificationParser_AUTO_LIST& Parser() {
    static const ClassificationParser_AUTO_LIST parser;
    return parser;
}

} // namespace

std::wstring AutoListContext(IMemoryResidentData& store, TableColumn place) {
    return Platform::FormatText(Message(kMsgInAutoList) + L" " + Message(kMsgAutoListType),
                                store.GetDbName(place.format), store.GetColumnName(place.format, place.field));
}

bool AutoListChain::FindEnd(TableColumn place, TableColumn& end) {
    std::vector<Step> steps;
    Link* last = nullptr;
    const bool resolved = Walk(place, steps, last);
    if (resolved) {
        Finish(steps, *last);
    }
    for (const Step& step : steps) {
        step.link->position = -1;
    }
    if (resolved) {
        end = LinkAt(place)->end;
    }
    return resolved;
}

void AutoListChain::Changed(TableColumn place) {
    const auto entry = links_.find(KeyOf(place));
    if (entry != links_.end() &&
        Parser().MatchFirst(store_.GetDbClassString(place.format, place.field)).Text != entry->second.written) {
        links_.clear();
    }
}

// Goes from link to link, up to one whose end is known or that the walk has passed: `last`.
bool AutoListChain::Walk(TableColumn place, std::vector<Step>& steps, Link*& last) {
    while (true) {
        last = LinkAt(place);
        if (last == nullptr) {
            return false;
        }
        if (last->end.format >= 0 || last->position >= 0) {
            return true;
        }
        last->position = static_cast<std::ptrdiff_t>(steps.size());
        steps.push_back({place, last});
        place = last->next;
    }
}

// Sets the end of every link of the walk. All of them share the end of `last` if that is known; else `last` is the
// first repeat, and the links from there on are a ring, in which each one's end is the link before it.
void AutoListChain::Finish(const std::vector<Step>& steps, const Link& last) {
    const std::ptrdiff_t ring = last.position;
    const TableColumn end = ring < 0 ? last.end : steps.back().place;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const bool is_inside = ring >= 0 && static_cast<std::ptrdiff_t>(i) > ring;
        steps[i].link->end = is_inside ? steps[i - 1].place : end;
    }
}

// The link of the place, looked up when it is new; null when that failed.
AutoListChain::Link* AutoListChain::LinkAt(TableColumn place) {
    const auto [entry, is_new] = links_.try_emplace(KeyOf(place));
    if (is_new && !Follow(place, entry->second)) {
        links_.erase(entry);
        return nullptr;
    }
    return &entry->second;
}

bool AutoListChain::Follow(TableColumn place, Link& link) {
    const std::wstring text = store_.GetDbClassString(place.format, place.field);
    const ClassificationMatch match = Parser().MatchFirst(text);
    if (!match.Matched) {
        link.end = place;
        return true;
    }
    link.written = match.Text;
    const auto context = [this, &place] {
        return AutoListContext(store_, place);
    };
    KSDLL_WriteDebug(context());
    const Reference reference = ReferenceOf(Parser(), match);
    return lookup_.FindReferenceFormatField(reference.format, reference.field, context, Datasets::Own,
                                            ClassificationAt(text, reference.position), place.format, link.next);
}

} // namespace Kestrona::Configuration
