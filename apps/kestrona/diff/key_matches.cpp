#include "diff/key_matches.h"

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>

namespace Kestrona::Tool {
namespace {

constexpr std::int32_t kNone = -1;

/// Numbers that compare equal have the same bits, and so have all that are no numbers.
std::uint64_t NumberKey(const KeyColumn& keys, std::int32_t record) {
    const double value = keys.store.GetDbValue(keys.field.format, keys.field.field, record);
    if (std::isnan(value)) {
        return std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
    }
    return std::bit_cast<std::uint64_t>(value == 0.0 ? 0.0 : value);
}

std::string TextKey(const KeyColumn& keys, std::int32_t record) {
    return ExactCell(keys.store, keys.field, record);
}

/// The old records of one key that have no partner yet, as a list through `Chains::next`.
struct Chain {
    std::int32_t first = kNone;
    bool in_new = false;
};

template <typename Key>
struct Chains {
    std::unordered_map<Key, Chain> by_key;
    std::vector<std::int32_t> next;
};

template <typename Key, typename Read>
Chains<Key> ChainOldRecords(const KeyColumn& keys, const Read& read, KeyMatches& matches) {
    Chains<Key> chains;
    chains.by_key.reserve(matches.new_of_old.size());
    chains.next.resize(matches.new_of_old.size(), kNone);
    // From the last to the first, so that a chain begins with its first record.
    for (std::int32_t record = keys.records; record-- > 0;) {
        Chain& chain = chains.by_key[read(keys, record)];
        matches.old_repeats += static_cast<std::size_t>(chain.first != kNone);
        chains.next[static_cast<std::size_t>(record)] = chain.first;
        chain.first = record;
    }
    return chains;
}

template <typename Key, typename Read>
void Match(const KeyColumn& old_keys, const KeyColumn& new_keys, const Read& read, KeyMatches& matches) {
    Chains<Key> chains = ChainOldRecords<Key>(old_keys, read, matches);
    for (std::int32_t record = 0; record < new_keys.records; ++record) {
        Chain& chain = chains.by_key[read(new_keys, record)];
        matches.new_repeats += static_cast<std::size_t>(chain.in_new);
        chain.in_new = true;
        if (chain.first != kNone) {
            const auto partner = static_cast<std::size_t>(chain.first);
            matches.old_of_new[static_cast<std::size_t>(record)] = chain.first;
            matches.new_of_old[partner] = record;
            chain.first = chains.next[partner];
        }
    }
}

} // namespace

KeyMatches MatchKeys(const KeyColumn& old_keys, const KeyColumn& new_keys) {
    KeyMatches matches;
    matches.new_of_old.resize(static_cast<std::size_t>(old_keys.records), kNone);
    matches.old_of_new.resize(static_cast<std::size_t>(new_keys.records), kNone);
    if (old_keys.field.form == ValueForm::Text || new_keys.field.form == ValueForm::Text) {
        Match<std::string>(old_keys, new_keys, TextKey, matches);
    } else {
        Match<std::uint64_t>(old_keys, new_keys, NumberKey, matches);
    }
    return matches;
}

} // namespace Kestrona::Tool
