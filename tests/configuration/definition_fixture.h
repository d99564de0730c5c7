#pragma once

#include "fixtures/recording_services.h"
#include "fixtures/schema.h"

#include <kestrona/execution_state.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// A store with a definition, and what resolving it says and changes.
namespace Kestrona::ConfigurationTest {

using Data::MemoryResident::MemoryResidentData;

// Every number and text that resolution may write, under "Format.Field.what". Classes are "+word:mask", data slots
// "[slot]"; what holds nothing (0 classes, empty texts) is left out.
using Snapshot = std::map<std::wstring, std::wstring>;

Snapshot TakeSnapshot(MemoryResidentData& store);

// What the later snapshot has, or has differently, as "Orders.X.table=1 Orders.X.[1]=2", in the order of the names.
std::wstring Differences(const Snapshot& before, const Snapshot& after);

// Headless, with message texts that show their number and their arguments: "<21006|Orders|X>". They take as many
// arguments as the text of a host would.
class DefinitionFixture : public testing::Test {
protected:
    DefinitionFixture();

    // Appends a format whose unset links point nowhere. The field 0 is the key.
    std::int32_t Add(const std::wstring& name, const std::vector<Fixtures::Field>& fields, std::int32_t key = 0);
    void SetExtension(std::int32_t format, const wchar_t* extension);
    void SetParent(std::int32_t format, std::int32_t parent);

    // What a pass changes in the format "Orders", without that name and without "X.", and in the field `other`. Sets
    // `succeeded_`.
    std::wstring Changes(bool (*pass)(MemoryResidentData&), const wchar_t* other = L"Orders.");

    // That this box is the one that was shown, with the caption "Plant". It is taken away.
    void ExpectBox(const std::wstring& text);

    // The texts of all boxes so far, one line each.
    std::wstring Boxes() const;

    Fixtures::FreshProcess process_;
    Fixtures::RecordingLogger* log_;
    Fixtures::RecordingMessages* messages_;
    std::unique_ptr<MemoryResidentData> owned_store_;
    MemoryResidentData& store_;
    bool succeeded_ = false;
};

// A field X with a keyword, and what comes of it: the changes, or the box that refuses it. The field is a number, or a
// matrix when its text says so at the beginning.
struct KeywordCase {
    KeywordCase(Fixtures::Field field, std::wstring outcome) : x(std::move(field)), expected(std::move(outcome)) {}

    KeywordCase(const std::wstring& keyword, std::wstring outcome, std::vector<Class> classes = {},
                std::vector<Fixtures::Field> behind = {});

    Fixtures::Field x;
    std::wstring expected;
    std::vector<Fixtures::Field> more; // behind the other fields of X's format
};

// A matrix field.
Fixtures::Field Matrix(const std::wstring& name, const std::wstring& classification, std::vector<Class> classes = {});
// A real field.
Fixtures::Field Real(const std::wstring& name, const std::wstring& classification, std::vector<Class> classes = {});

} // namespace Kestrona::ConfigurationTest
