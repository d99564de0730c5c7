// Rings, script variables and translatable texts in calculated fields, and what is excluded from the database.
#include "fixtures/store_test.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/expression_validation.h>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

// One format whose fields are F0, F1 ...; a field with an expression is calculated.
class Graph {
public:
    explicit Graph(const std::vector<std::wstring>& expressions) {
        std::vector<Field> fields;
        for (const std::wstring& text : expressions) {
            const std::wstring name = L"F" + std::to_wstring(fields.size());
            fields.push_back(text.empty() ? Number(name) : Calculated(name));
            fields.back().classification = L"EVALUATE \"" + text + L"\"";
        }
        AddFormat(*store, L"T", fields);
        for (std::size_t field = 0; field < fields.size(); ++field) {
            if (!expressions[field].empty()) {
                const auto number = static_cast<std::int32_t>(field);
                store->SetDbEvaluateExpression(
                    0, number, KSDLL_CreateFieldExpression(*store, 0, number, expressions[field], false, nullptr));
            }
        }
    }

    // "" when all is sound.
    std::wstring Validate() {
        messages.boxes.clear();
        const bool sound = KSDLL_ValidateExpressions(*store);
        EXPECT_EQ(sound, messages.boxes.empty());
        return sound ? L"" : messages.boxes.front().text;
    }

    // "yes", "no" or the text that was thrown.
    std::wstring RequiresExclusion(std::int32_t field) const {
        try {
            return KSDLL_RequiresExclusionFromDB(*store, 0, field) ? L"yes" : L"no";
        } catch (const wchar_t* text) {
            return text;
        }
    }

    FreshProcess process;
    RecordingMessages& messages = InstallRecordingMessages();
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
};

std::wstring Box(const std::wstring& field, const std::wstring& message, const std::wstring& expression) {
    return L"Parsing failed in format '' and field '" + field + L"':\n" + message + L"\nIn Expression \"" + expression +
           L"\"";
}

std::wstring CyclicBox(const std::wstring& field, const std::wstring& target, const std::wstring& expression) {
    return Box(field, L"This field cannot reference " + target + L" due to cyclic dependencies.", expression);
}

// The field that was entered last loses its expression; an empty one leads nowhere.
TEST(Validation, TakesTheExpressionOfTheFieldAtFault) {
    Graph self({L"{#F0} + 1"});
    EXPECT_EQ(self.Validate(), CyclicBox(L"F0", L"F0", L"{#F0} + 1"));
    EXPECT_EQ(self.store->GetDbEvaluateExpression(0, 0), nullptr);
    EXPECT_EQ(self.Validate(), L"");
    Graph later({L"", L"{#F0} + 1", L"{#F1} + {KSEP_X}"});
    EXPECT_EQ(later.Validate(), Box(L"F1", L"An Evaluate expression, cannot reference a KSEP Variable.", L"{#F0} + 1"));
    EXPECT_NE(later.store->GetDbEvaluateExpression(0, 1), nullptr);
    EXPECT_EQ(later.store->GetDbEvaluateExpression(0, 2), nullptr);
}

TEST(Validation, RefusesTextsOfTranslatableTables) {
    FreshProcess process;
    RecordingMessages& messages = InstallRecordingMessages();
    const auto store = CreateMemoryResidentData();
    Field key = Number(L"Key");
    key.classification = L"KEY | TRANSLATABLE";
    const std::int32_t colours = AddFormat(*store, L"Colours", {key, Text(L"Colour")});
    const std::int32_t parts = AddFormat(*store, L"Parts", {Number(L"Key"), Reference(L"Colour", colours, 1)});
    Field ring = Reference(L"Ring", parts + 1, 3);
    const std::int32_t orders = AddFormat(
        *store, L"Orders", {Number(L"Key"), Reference(L"Part", parts, 1), Calculated(L"Sum"), ring, Number(L"Plain")});
    const auto validate = [&](const wchar_t* text) {
        messages.boxes.clear();
        store->SetDbEvaluateExpression(orders, 2, KSDLL_CreateExpression(*store, orders, text, false, nullptr));
        return KSDLL_ValidateExpressions(*store) ? std::wstring() : messages.boxes.at(0).text;
    };
    const std::wstring refusal = L"This expression cannot reference field 'Part' as a string as it is a database "
                                 L"reference to a translatable table.\n";
    EXPECT_NE(validate(L"{$Part}").find(refusal), std::wstring::npos);
    EXPECT_NE(validate(L"~{$Part}~ == ~red~").find(refusal), std::wstring::npos);
    EXPECT_NE(validate(L"{Part}").find(refusal), std::wstring::npos) << "a reference is read as text";
    EXPECT_EQ(validate(L"{#Part}"), L"");
    EXPECT_EQ(validate(L"{$Plain} + {$Ring}"), L"") << "a ring of references ends";
    store->SetDbType(orders, 1, TypeBit::kReal);
    EXPECT_EQ(validate(L"{Part}"), L"");
    EXPECT_NE(validate(L"{$Part}").find(refusal), std::wstring::npos);
}

TEST(Validation, CostsNoMoreThanTheExpressionsThatItMeets) {
    std::vector<std::wstring> diamond;
    for (int i = 1; i <= 30; ++i) {
        const std::wstring below = L"{#F" + std::to_wstring(i) + L"}";
        diamond.push_back(below + L" + " + below);
    }
    diamond.emplace_back(L"1");
    Graph graph(diamond);
    EXPECT_EQ(graph.Validate(), L"");
    EXPECT_EQ(graph.RequiresExclusion(0), L"no");

    std::vector<std::wstring> chain;
    for (int i = 1; i <= 1500; ++i) {
        chain.push_back(L"{#F" + std::to_wstring(i) + L"}");
    }
    chain.emplace_back(L"{#F0}");
    Graph deep(chain);
    EXPECT_EQ(deep.Validate(), CyclicBox(L"F1500", L"F0", L"{#F0}"));
}

// What random graphs refer to, and walks over them that are written down as they are told: recursive, each path anew.
struct Twin {
    static constexpr std::size_t kScript = 1000;

    explicit Twin(std::mt19937& random) : references(1 + random() % 10), excluded(references.size()) {
        const bool downwards = random() % 2 == 0;
        for (std::size_t field = 0; field < references.size(); ++field) {
            excluded[field] = random() % 8 == 0;
            for (auto count = random() % 4; count > 0; --count) {
                const bool is_down = downwards && random() % 16 != 0;
                const std::size_t target = random() % (is_down ? field + 1 : references.size());
                const bool is_self = target == field && random() % 8 != 0;
                references[field].push_back(random() % 40 == 0 ? kScript : is_self ? 0 : target);
            }
        }
    }

    std::wstring TextOf(std::size_t field) const {
        std::wstring text;
        for (const std::size_t target : references[field]) {
            text += (text.empty() ? L"" : L" - ") +
                    (target == kScript ? std::wstring(L"{#KSEP_X}") : L"{#F" + std::to_wstring(target) + L"}");
        }
        return text;
    }

    bool IsCalculated(std::size_t field) const { return field != kScript && !references[field].empty(); }

    bool IsOnStack(std::size_t field) const { return std::ranges::find(stack, field) != stack.end(); }

    std::wstring Validate() {
        for (std::size_t field = 0; field < references.size(); ++field) {
            if (box.empty() && IsCalculated(field)) {
                Follow(field);
            }
        }
        return box;
    }

    void Follow(std::size_t field) {
        entered = field;
        stack.push_back(field);
        for (const std::size_t target : references[field]) {
            if (target == kScript || (IsCalculated(target) && IsOnStack(target))) {
                const std::wstring name = L"F" + std::to_wstring(entered);
                const std::wstring text = TextOf(entered);
                box = target == kScript ? Box(name, L"An Evaluate expression, cannot reference a KSEP Variable.", text)
                                        : CyclicBox(name, L"F" + std::to_wstring(target), text);
            } else if (IsCalculated(target) && box.empty()) {
                Follow(target);
            }
        }
        stack.pop_back();
    }

    std::wstring RequiresExclusion(std::size_t field) {
        stack.clear();
        return IsCalculated(field) ? FindExcluded(field) : L"Expected an evaluted column";
    }

    std::wstring FindExcluded(std::size_t field) {
        std::wstring found = L"no";
        stack.push_back(field);
        for (std::size_t i = 0; i < references[field].size() && found == L"no"; ++i) {
            const std::size_t target = references[field][i];
            if (target != kScript && excluded[target]) {
                found = L"yes";
            } else if (IsCalculated(target)) {
                found = IsOnStack(target) ? L"Cyclic dependency found." : FindExcluded(target);
            }
        }
        stack.pop_back();
        return found;
    }

    std::vector<std::vector<std::size_t>> references; // none: not calculated
    std::vector<bool> excluded;
    std::vector<std::size_t> stack;
    std::wstring box;
    std::size_t entered = 0;
};

TEST(Validation, AgreesWithASearchOfEveryPath) {
    std::mt19937 random(11);
    int unsound = 0;
    int cyclic = 0;
    int required = 0;
    for (int round = 0; round < 3000; ++round) {
        Twin twin(random);
        std::vector<std::wstring> texts;
        for (std::size_t field = 0; field < twin.references.size(); ++field) {
            texts.push_back(twin.TextOf(field));
        }
        Graph graph(texts);
        for (std::size_t field = 0; field < texts.size(); ++field) {
            if (twin.excluded[field]) {
                graph.store->AddDbClass(0, static_cast<std::int32_t>(field), Classes::kExcludeFromDb);
            }
        }
        for (std::size_t field = 0; field < texts.size(); ++field) {
            const std::wstring expected = twin.RequiresExclusion(field);
            ASSERT_EQ(graph.RequiresExclusion(static_cast<std::int32_t>(field)), expected)
                << "round " << round << " field " << field;
            cyclic += expected.starts_with(L"Cyclic") ? 1 : 0;
            required += expected == L"yes" ? 1 : 0;
        }
        twin.stack.clear();
        const std::wstring expected = twin.Validate();
        ASSERT_EQ(graph.Validate(), expected) << "round " << round;
        unsound += expected.empty() ? 0 : 1;
    }
    EXPECT_GT(unsound, 500);
    EXPECT_LT(unsound, 2500);
    EXPECT_GT(cyclic, 500);
    EXPECT_GT(required, 500);
}

} // namespace

} // namespace Kestrona::Expressions
