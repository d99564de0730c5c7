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
            fields.push_back(Number(L"F" + std::to_wstring(fields.size())));
            if (!text.empty()) {
                fields.back().classes = {Classes::kEvaluate};
                fields.back().classification = L"EVALUATE \"" + text + L"\"";
            }
        }
        AddFormat(*store, L"T", fields);
    }

    void Compile() {
        for (std::int32_t field = 0; field < store->GetDbFields(0); ++field) {
            if (store->ClassDefined(0, field, Classes::kEvaluate)) {
                std::wstring text = store->GetDbClassString(0, field);
                text = text.substr(10, text.size() - 11);
                store->SetDbEvaluateExpression(0, field,
                                               KSDLL_CreateFieldExpression(*store, 0, field, text, false, nullptr));
                ASSERT_NE(store->GetDbEvaluateExpression(0, field), nullptr) << testing::PrintToString(text);
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
    std::wstring RequiresExclusion(std::int32_t field) {
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
    self.Compile();
    EXPECT_EQ(self.Validate(), CyclicBox(L"F0", L"F0", L"{#F0} + 1"));
    EXPECT_EQ(self.store->GetDbEvaluateExpression(0, 0), nullptr);
    EXPECT_EQ(self.Validate(), L"");
    Graph later({L"", L"{#F0} + 1", L"{#F1} + {KSEP_X}"});
    later.Compile();
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
    graph.Compile();
    EXPECT_EQ(graph.Validate(), L"");
    EXPECT_EQ(graph.RequiresExclusion(0), L"no");

    std::vector<std::wstring> chain;
    for (int i = 1; i <= 1500; ++i) {
        chain.push_back(L"{#F" + std::to_wstring(i) + L"}");
    }
    chain.push_back(L"{#F0}");
    Graph deep(chain);
    deep.Compile();
    EXPECT_EQ(deep.Validate(), CyclicBox(L"F1500", L"F0", L"{#F0}"));
}

// What random graphs refer to, and walks over them that are written down as they are told: recursive, each path anew.
class Twin {
public:
    static constexpr int kScript = -1;

    explicit Twin(std::mt19937& random) {
        const auto fields = static_cast<std::uint32_t>(1 + random() % 10);
        const bool downwards = random() % 2 == 0;
        for (std::uint32_t field = 0; field < fields; ++field) {
            references.emplace_back();
            excluded.push_back(random() % 8 == 0);
            for (auto count = random() % 4; count > 0; --count) {
                const auto target = static_cast<int>(random() % (downwards && random() % 16 != 0 ? field + 1 : fields));
                const bool is_self = target == static_cast<int>(field) && random() % 8 != 0;
                references.back().push_back(random() % 40 == 0 ? kScript : is_self ? 0 : target);
            }
        }
    }

    std::vector<std::wstring> Texts() const {
        std::vector<std::wstring> texts;
        for (const std::vector<int>& targets : references) {
            texts.emplace_back();
            for (const int target : targets) {
                texts.back() += texts.back().empty() ? L"" : L" - ";
                texts.back() += target == kScript ? L"{#KSEP_X}" : L"{#F" + std::to_wstring(target) + L"}";
            }
        }
        return texts;
    }

    std::wstring Validate() {
        for (int field = 0; field < static_cast<int>(references.size()); ++field) {
            if (!references[static_cast<std::size_t>(field)].empty()) {
                box.clear();
                Follow(field);
                if (!box.empty()) {
                    return box;
                }
            }
        }
        return box;
    }

    std::wstring RequiresExclusion(int field) {
        if (references[static_cast<std::size_t>(field)].empty()) {
            return L"Expected an evaluted column";
        }
        try {
            return FindExcluded(field) ? L"yes" : L"no";
        } catch (const int) {
            stack.clear();
            return L"Cyclic dependency found.";
        }
    }

    std::vector<std::vector<int>> references; // none: not calculated
    std::vector<bool> excluded;

private:
    bool IsOnStack(int field) const { return std::ranges::find(stack, field) != stack.end(); }

    void Fault(const std::wstring& message) {
        box = Box(L"F" + std::to_wstring(entered), message, Texts()[static_cast<std::size_t>(entered)]);
    }

    void Follow(int field) {
        entered = field;
        stack.push_back(field);
        for (const int target : references[static_cast<std::size_t>(field)]) {
            if (target == kScript) {
                Fault(L"An Evaluate expression, cannot reference a KSEP Variable.");
            } else if (!references[static_cast<std::size_t>(target)].empty()) {
                if (IsOnStack(target)) {
                    Fault(L"This field cannot reference F" + std::to_wstring(target) + L" due to cyclic dependencies.");
                } else if (box.empty()) {
                    Follow(target);
                }
            }
        }
        stack.pop_back();
    }

    bool FindExcluded(int field) {
        stack.push_back(field);
        for (const int target : references[static_cast<std::size_t>(field)]) {
            if (target == kScript) {
                continue;
            }
            if (excluded[static_cast<std::size_t>(target)]) {
                stack.clear();
                return true;
            }
            if (references[static_cast<std::size_t>(target)].empty()) {
                continue;
            }
            if (IsOnStack(target)) {
                throw target;
            }
            if (FindExcluded(target)) {
                return true;
            }
        }
        stack.pop_back();
        return false;
    }

    std::vector<int> stack;
    std::wstring box;
    int entered = -1;
};

TEST(Validation, AgreesWithASearchOfEveryPath) {
    std::mt19937 random(11);
    int unsound = 0;
    int cyclic = 0;
    int required = 0;
    for (int round = 0; round < 3000; ++round) {
        Twin twin(random);
        Graph graph(twin.Texts());
        graph.Compile();
        for (int field = 0; field < static_cast<int>(twin.references.size()); ++field) {
            if (twin.excluded[static_cast<std::size_t>(field)]) {
                graph.store->AddDbClass(0, field, Classes::kExcludeFromDb);
            }
        }
        for (int field = 0; field < static_cast<int>(twin.references.size()); ++field) {
            const std::wstring expected = twin.RequiresExclusion(field);
            ASSERT_EQ(graph.RequiresExclusion(field), expected) << "round " << round << " field " << field;
            cyclic += expected.starts_with(L"Cyclic") ? 1 : 0;
            required += expected == L"yes" ? 1 : 0;
        }
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
