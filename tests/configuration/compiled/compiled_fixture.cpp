#include "configuration/compiled/compiled_fixture.h"

#include "configuration/compiled_configuration.h"
#include "fixtures/program_output.h"

#include <kestrona/execution_state.h>
#include <kestrona/host/native_config.h>
#include <kestrona/process.h>

#include <cstdlib>

namespace Kestrona::ConfigurationTest {

using Configuration::Compiled::CompilationState;
using Configuration::Compiled::ConfigurationCompileType;
using Configuration::Compiled::ConfigurationSourceType;

namespace {

constexpr const char* kOracle = "python3 '" KESTRONA_SOURCE_DIR "/tests/oracles/compiled.py' ";

class FileMessages : public Fixtures::RecordingMessages {
public:
    void DisplayGenericUnableToRead(const std::wstring& name) override { ShowMessage(L"unreadable", name.c_str(), 0); }

    void DisplayUnableToOpen(const std::wstring& name) override { ShowMessage(L"not opened", name.c_str(), 0); }

    std::wstring GetMessage(std::int32_t id) override {
        const std::wstring text = RecordingMessages::GetMessage(id);
        return text.empty() ? std::to_wstring(id) + L" %s %s" : text;
    }
};

Fixtures::RecordingMessages* InstallFileMessages() {
    auto* const messages = new FileMessages();
    MessageManager::setInstance(messages);
    messages->texts = {
        {19054, L"old %2% %3%"}, {19062, L"missing"}, {19063, L"foreign '%1%'"}, {19076, L"new %2% %3%"}};
    return messages;
}

} // namespace

CompiledFixture::CompiledFixture()
    : log_(&Fixtures::InstallRecordingLogger()),
      messages_(InstallFileMessages()),
      path_(folder_.WidePath("plant.ks")) {
    ExecutionState::Instance().set_IsRunningHeadless(true);
    CompilationState& compilation = CompilationState::Instance() = CompilationState();
    compilation.set_CompileType(ConfigurationCompileType::Cnf);
    compilation.set_SourceType(ConfigurationSourceType::Cnf);
}

CompiledFixture::~CompiledFixture() {
    CompilationState::Instance() = CompilationState();
}

std::unique_ptr<MemoryResidentData> CompiledFixture::LoadDefinition(const std::string& file) {
    auto store = Data::MemoryResident::CreateMemoryResidentData();
    EXPECT_EQ(Host::NativeConfig().Load(KESTRONA_SOURCE_DIR "/" + file, *store), Host::LoadOutcome::Ok) << file;
    return store;
}

std::unique_ptr<MemoryResidentData> CompiledFixture::StoreWithTablesOf(MemoryResidentData& other) {
    auto store = Data::MemoryResident::CreateMemoryResidentData();
    store->CreateTablePointer();
    for (std::int32_t table = 0; other.GetTableName(table) != nullptr; ++table) {
        store->CreateTableFields(table);
        store->SetTableName(table, KSDLL_AddText(other.GetTableName(table)));
        store->SetTableFields(table, other.GetTableFields(table));
        for (std::int32_t i = 0; i < other.GetTableFields(table); ++i) {
            store->SetTableText(table, i, KSDLL_AddText(other.GetTableText(table, i)));
            store->SetTableValue(table, i, other.GetTableValue(table, i));
        }
    }
    return store;
}

bool CompiledFixture::Write(MemoryResidentData& store) {
    return Configuration::WriteCompiledConfiguration(store, path_, this);
}

bool CompiledFixture::Read(MemoryResidentData& store) {
    return Configuration::ReadCompiledConfiguration(store, path_, this, nullptr, this);
}

nlohmann::json CompiledFixture::Decode(int kind) const {
    const std::string found =
        Fixtures::OutputOf(kOracle + ("decode '" + folder_.Path("plant.ks")) + "' " + std::to_string(kind));
    EXPECT_NE(found, "") << "python3 reads the file as well";
    return nlohmann::json::parse(found, nullptr, false);
}

void CompiledFixture::Encode(const nlohmann::json& file) const {
    folder_.Write("encoded.json", file.dump());
    const std::string files = folder_.Path("plant.ks") + "' < '" + folder_.Path("encoded.json");
    EXPECT_EQ(std::system((kOracle + ("encode '" + files) + "'").c_str()), 0) << "python3 writes the file";
}

std::wstring CompiledFixture::Boxes() const {
    std::wstring text;
    for (const auto& box : messages_->boxes) {
        text += box.text + L"\n";
    }
    return text;
}

} // namespace Kestrona::ConfigurationTest
