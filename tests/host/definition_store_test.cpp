#include "configuration/compiled/definition_description.h"
#include "configuration/definition_fixture.h"
#include "definition/classification.h"
#include "definition/words.h"
#include "fixtures/recording_services.h"

#include <kestrona/classes.h>
#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/host/console_messages.h>
#include <kestrona/host/definition.h>
#include <kestrona/process.h>
#include <kestrona/store.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <memory>
#include <random>
#include <string>
#include <string_view>

// From the tree into the store and back into text.

namespace Kestrona::Host {
namespace {

using Data::MemoryResident::CreateMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;

std::optional<std::string> NoFile(const std::string&) {
    return std::nullopt;
}

// Everything that a definition puts into a store, or resolution makes of it, as text.
std::string StateOf(MemoryResidentData& store) {
    nlohmann::json state{{"formats", ConfigurationTest::DescribeFormats(store)},
                         {"substitutions", ConfigurationTest::DescribeSubstitutions(store)}};
    for (const auto& [name, value] : ConfigurationTest::TakeSnapshot(store)) {
        state["fields"][ToUtf8(name)] = ToUtf8(value);
    }
    for (std::int32_t table = 0; table < kMaxStringTables && store.GetTableName(table) != nullptr; ++table) {
        nlohmann::json& entries = state["tables"][ToUtf8(store.GetTableName(table))];
        for (std::int32_t i = 0; i < store.GetTableFields(table); ++i) {
            entries.push_back({ToUtf8(store.GetTableText(table, i)), store.GetTableValue(table, i)});
        }
    }
    for (std::int32_t parent = 0; parent < store.GetFormatCount(); ++parent) {
        for (std::int32_t child = 0; child < store.GetFormatCount(); ++child) {
            state["children"].push_back(store.IsFormatChildOfParent(parent, child));
        }
    }
    return state.dump(1, ' ', false, nlohmann::json::error_handler_t::replace);
}

class DefinitionStore : public testing::Test {
protected:
    // A load that fails says why and does not end the test.
    DefinitionStore() {
        MessageManager::setInstance(new ConsoleMessages("load"));
        ExecutionState::Instance().set_IsRunningHeadless(true);
    }

    static Definition ParseGood(const std::string& text) {
        const ParseResult result = ParseDefinition(text, "main.ksdef", NoFile, {.check_references = false});
        for (const Diagnostic& diagnostic : result.diagnostics) {
            EXPECT_NE(diagnostic.severity, Severity::Error) << diagnostic.ToString() << "\n" << text;
        }
        return result.definition;
    }

    static std::unique_ptr<MemoryResidentData> Fill(const Definition& definition) {
        auto store = CreateMemoryResidentData();
        EXPECT_TRUE(FillStore(definition, *store));
        return store;
    }

    // Prints, reads and fills again, and compares with the store.
    static void ExpectRoundTrip(MemoryResidentData& store) {
        const std::string text = PrintDefinition(store);
        const auto again = Fill(ParseGood(text));
        EXPECT_EQ(StateOf(*again), StateOf(store)) << text;
        EXPECT_EQ(PrintDefinition(*again), text);
    }

private:
    Fixtures::FreshProcess process_;
};

TEST_F(DefinitionStore, WhateverTheWritingTheMeaningIsTheSame) {
    const Definition definition = ParseGood("\xef\xbb\xbf# a comment\r\n"
                                            "define Eight = 8 define \"Two words\" = EIGHT\n"
                                            "help -17 \"first \"\n   \"second\\n\" help 0 \"\"\n"
                                            "table \"My colours\" { \"Red\" = 1  \"Blue\" = 1.5\n\"\" = eight }\n"
                                            "substitute \"a\\\\b\" -> \"\\t\"\n"
                                            "format \"A b\" \"Shown \\\"so\\\" \\u{1f56f}\"\r\n"
                                            "{ extension abc # another\r\n"
                                            "  dataset \"\"\r\n"
                                            "  minlength 3 maxrecords 7\r\n"
                                            "  key Nr.1#\r\n"
                                            "  field Nr.1#: INTEGER|UNIQUE\r\n"
                                            "}\r\n"
                                            "format B { associated \"A b\" common key \xc3\x9c\r\n"
                                            "  field \xc3\x9c readonly 2 level -3 = 1\r\n"
                                            "    : INTEGER # the words go on\r\n"
                                            "\r\n"
                                            "    # below this line\r\n"
                                            "    |HIDDEN | UNIQUE\r\n"
                                            "  field key level hidden length 5 readonly : TEXT\r\n"
                                            "}");
    const ClassificationWord& word = definition.formats.at(1).fields.at(0).words.at(1);
    EXPECT_EQ(word.place.line, 20);
    EXPECT_EQ(word.place.column, 6);
    EXPECT_EQ(PrintDefinition(*Fill(definition)), R"(define Eight = 8
define "Two words" = 8

help -17 "first second\n"
help 0 ""

table "My colours" {
    "Red" = 1
    "Blue" = 1.5
    "" = 8
}

substitute "a\\b" -> "\t"

format "A b" "Shown \"so\" 🕯" {
    extension abc
    dataset ""
    minlength 3
    maxrecords 7
    key "Nr.1#"

    field "Nr.1#" : INTEGER | UNIQUE
}

format B {
    associated "A b" common
    key "Ü"

    field "Ü" level -3 readonly 2 : INTEGER | HIDDEN | UNIQUE
    field key level hidden readonly length 5 : TEXT
}
)");
}

TEST_F(DefinitionStore, FillingSetsWhatTheLoadBuildsOn) {
    const auto store = Fill(ParseGood("define One = 1 define Two = 2\n"
                                      "help 9 \"nine\"\n"
                                      "table T { \"a\" = 1.5 }\n"
                                      "substitute \"x\" -> \"y\"\n"
                                      "format Child \"A child\" { associated Root common key K\n"
                                      "field K = 5 level 2 readonly length 7 : INTEGER | CALL DIALOG(33)\n}\n"
                                      "format Root { extension ext dataset \"D\" minlength 4 maxrecords 6 key K\n"
                                      "field J : TEXT\nfield K : INTEGER | UNIQUE\n}\n"
                                      "format Free { associated \"BY CLASSIFICATION(NOWHERE)\" key K\n"
                                      "field K : INTEGER\n}\n"));
    ASSERT_EQ(store->GetFormatCount(), 3);
    EXPECT_EQ(store->GetAssociateTableNumber(0), 1);
    EXPECT_TRUE(store->IsFormatChildOfParent(1, 0));
    EXPECT_TRUE(store->IsAssociatedTableEligibleCommonDataset(0));
    EXPECT_EQ(store->GetDbMinLength(1), 4);
    EXPECT_EQ(store->GetUserMaxRecords(1), 6);
    EXPECT_STREQ(store->GetDefaultDatasetName(1), L"D");
    EXPECT_EQ(store->GetDbTable(0, 0), 33);
    EXPECT_EQ(store->GetDbData(0, 0, DataSlot::kSwitchField), -1);
    EXPECT_EQ(store->GetDbData(0, 0, DataSlot::kLookupFormat), -1);
    EXPECT_EQ(store->GetDbTable(1, 0), -1);

    // No parent fits, so the child stands alone and keeps no data.
    EXPECT_FALSE(store->IsAssociatedTable(2));
    EXPECT_STREQ(store->GetDbClassString(2, 0), L"INTEGER | EXCLUDE FROM DB");
    ExpectRoundTrip(*store);
}

TEST_F(DefinitionStore, FillingAgainReplacesFormatsAndTablesOfTheSameName) {
    const auto store =
        Fill(ParseGood("table A { \"a\" = 1 \"b\" = 2 }\ntable B { \"c\" = 3 }\nsubstitute \"a\" -> \"b\"\n"
                       "format X { extension e key K\nfield K : INTEGER\nfield L : REAL\n}\n"
                       "format Y { key K\nfield K : INTEGER\n}\n"));
    ASSERT_TRUE(FillStore(ParseGood("table A { \"z\" = 9 }\nformat Z { key K\nfield K : REAL\n}\n"), *store));
    EXPECT_EQ(PrintDefinition(*store), "table \"A\" {\n    \"z\" = 9\n}\n\ntable \"B\" {\n    \"c\" = 3\n}\n\n"
                                       "format Z {\n    key K\n\n    field K : REAL\n}\n");
    EXPECT_EQ(store->GetDbName(1), nullptr);
}

class RandomDefinition {
public:
    explicit RandomDefinition(unsigned seed) : random_(seed) {}

    Definition Make() {
        Definition definition;
        definition.files.emplace_back("random");
        for (std::size_t i = Below(4); i > 0; --i) {
            definition.constants.push_back({Name(i), Number(), {}});
            definition.help.push_back({static_cast<std::int32_t>(random_()), AnyText(), {}});
            definition.tables.push_back({Name(i), {{AnyText(), Number()}, {AnyText(), Number()}}, {}});
            definition.substitutions.push_back({L"x" + AnyText(), AnyText(), {}});
        }
        for (std::size_t i = 1 + Below(4); i > 0; --i) {
            definition.formats.push_back(MakeFormat(i));
        }
        return definition;
    }

private:
    std::size_t Below(std::size_t bound) { return random_() % bound; }

    bool Sometimes() { return Below(3) == 0; }

    double Number() {
        constexpr double kSpecial[] = {-0.0, 1e300, -1.0};
        return Sometimes() ? kSpecial[Below(3)]
                           : std::ldexp(static_cast<double>(random_()) - 2e9, static_cast<int>(Below(40)) - 30);
    }

    std::wstring AnyText() {
        constexpr std::wstring_view kCharacters = L"ab Z09_-.:#{}~=\\|()\"\n\t\a\u00e9\u65e5\U0001f56f\xdc00";
        std::wstring text;
        for (std::size_t i = Below(8); i > 0; --i) {
            text += kCharacters[Below(kCharacters.size())];
        }
        return text;
    }

    // Different for different numbers.
    std::wstring Name(std::size_t number) {
        constexpr std::wstring_view kCharacters = L"ab Z09_-.#=\\\u00e9\u65e5";
        std::wstring text(1, Sometimes() ? L'#' : L'N');
        for (std::size_t i = Below(6); i > 0; --i) {
            text += kCharacters[Below(kCharacters.size())];
        }
        return text + std::to_wstring(number);
    }

    FieldDefinition MakeField(std::size_t number) {
        FieldDefinition field;
        field.name = Name(number);
        field.default_value = Number();
        field.dialog_level = static_cast<std::int16_t>(Sometimes() ? random_() : 0);
        field.read_only = static_cast<ReadOnlyType>(Sometimes() ? Below(256) : 0);
        field.max_text_length = static_cast<std::int32_t>(Sometimes() ? Below(1000) : 0);
        field.type = static_cast<std::uint32_t>(Below(256));
        std::uint32_t types = 0;
        for (std::size_t i = Below(5); i > 0; --i) {
            const Language::Word& word = Language::AllWords()[Below(Language::AllWords().size())];
            field.classification += (field.classification.empty() ? L"" : L" | ") + std::wstring(word.text) +
                                    std::wstring(Language::ExampleArguments(word.shape));
            types |= word.type;
        }
        field.type = Sometimes() ? types : field.type;
        field.classification += Sometimes() ? AnyText() : std::wstring();
        for (std::uint32_t i = 0; Sometimes() && i < kClassWords; ++i) {
            field.classes[i] = static_cast<std::uint32_t>(random_()) &
                               ~Language::ResolutionBits(static_cast<std::int32_t>(i)) & ~kBoundBits[i];
        }
        return field;
    }

    FormatDefinition MakeFormat(std::size_t number) {
        FormatDefinition format;
        format.name = Name(number);
        format.display_name = Sometimes() ? AnyText() : format.name;
        if (Sometimes()) {
            format.extension = Name(0);
        }
        format.dataset = Sometimes() ? std::optional(AnyText()) : std::nullopt;
        format.minimum_length = static_cast<std::int32_t>(Sometimes() ? Below(100) : 0);
        format.maximum_records = static_cast<std::int32_t>(Sometimes() ? 1 + Below(100) : 0);
        for (std::size_t i = 1 + Below(5); i > 0; --i) {
            format.fields.push_back(MakeField(i));
        }
        format.key = static_cast<std::int32_t>(Below(format.fields.size()));
        return format;
    }

    // Bits that come with a number, or that resolution sets as well: those of words that need no keyword beside them.
    static constexpr std::uint32_t kBoundBits[kClassWords] = {Classes::kHidden.mask | Classes::kReadOnly.mask |
                                                                  Classes::kInheritFromParent.mask,
                                                              Classes::kUpdateReference.mask,
                                                              0,
                                                              0,
                                                              Classes::kSubstitute.mask | Classes::kSubstitutx.mask,
                                                              0,
                                                              Classes::kStorageMark.mask,
                                                              0,
                                                              0,
                                                              Classes::kCallDialog.mask,
                                                              0,
                                                              0};

    std::mt19937 random_;
};

TEST_F(DefinitionStore, AnyDefinitionPrintsToATextThatFillsAlike) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        const auto store = Fill(RandomDefinition(seed).Make());
        ExpectRoundTrip(*store);
        if (HasFailure()) {
            FAIL() << "seed " << seed;
        }
    }
}

// Resolves in place. What resolution adds must not be printed, or the next load would add it twice.
TEST_F(DefinitionStore, SamplesPrintToTextThatLoadsToTheSameStore) {
    for (const char* sample : {"plant/plant.ksdef", "adventureworks/adventureworks.ksdef"}) {
        const ParseResult parsed = ParseDefinitionFile(std::string(KESTRONA_SOURCE_DIR "/examples/") + sample);
        EXPECT_TRUE(parsed.diagnostics.empty());
        const auto store = Fill(parsed.definition);
        ExpectRoundTrip(*store);
        ASSERT_EQ(check_database_access(*store, true, nullptr), 0);

        const std::string text = PrintDefinition(*store);
        const auto again = Fill(ParseGood(text));
        for (int time = 0; time < 2; ++time) {
            ASSERT_EQ(check_database_access(*again, true, nullptr), 0);
            EXPECT_EQ(StateOf(*again), StateOf(*store));
            EXPECT_EQ(PrintDefinition(*again), text);
        }
    }
}

} // namespace
} // namespace Kestrona::Host
