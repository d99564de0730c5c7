// Process-wide state: save variables, user strings, paths, tags, command lines, hooks, logs, settings, services.
#include "fixtures/recording_services.h"
#include "store/hooks.h"

#include <kestrona/execution_state.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <limits>

namespace Kestrona {

namespace {

using namespace Fixtures;

class Process : public testing::Test {
protected:
    FreshProcess process;
};

TEST_F(Process, SaveVariablesAreOneBlockOfBytes) {
    EXPECT_EQ(KSDLL_GetDoubleSv(kSvFixedNow), -1.0);
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 0.0f);
    KSDLL_SetFloatSv(kSvVersionMark, 8.01);
    EXPECT_EQ(KSDLL_GetLongSv(kSvVersionMark), 0x410028F6);
    KSDLL_SetDoubleSv(101, 0.25); // no alignment asked for
    EXPECT_EQ(KSDLL_GetDoubleSv(101), 0.25);
    KSDLL_SetLongSv(4092, 5);
    EXPECT_EQ(KSDLL_GetLongSv(4092), 5);
    for (const std::int32_t offset :
         {-1, 4093, 4096, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        KSDLL_SetLongSv(offset, 7);
        KSDLL_SetDoubleSv(offset, 7.0);
        KSDLL_SetFloatSv(offset, 7.0);
        EXPECT_EQ(KSDLL_GetLongSv(offset), 0) << offset;
        EXPECT_EQ(KSDLL_GetDoubleSv(offset), 0.0) << offset;
    }
    KSDLL_SetDoubleSv(4089, 7.0); // one byte too far
    EXPECT_EQ(KSDLL_GetLongSv(4092), 5);
}

TEST_F(Process, PointersStandBesideTheBlock) {
    int target = 0;
    int other = 0;
    KSDLL_SetLongSv(kSvDefinitionEnd, 1234);
    KSDLL_SetPointerSv(kSvHelpFile, &target);
    KSDLL_SetPointerSv(kSvSpecialPointer, &target);
    KSDLL_SetPointerSv(kSvSpecialBlock, &target);
    KSDLL_SetPointerSv(-4, &target);
    KSDLL_SetPointerSv(4096, &target);
    EXPECT_EQ(KSDLL_GetPointerSv(kSvHelpFile), &target);
    EXPECT_EQ(KSDLL_GetLongSv(kSvDefinitionEnd), 1234);
    EXPECT_EQ(KSDLL_GetDoubleSv(kSvFixedNow), -1.0);
    for (const std::int32_t offset : {kSvSpecialPointer, kSvSpecialBlock, -4, 4096, 8}) {
        EXPECT_EQ(KSDLL_GetPointerSv(offset), nullptr) << offset;
    }
    SetSpecialPointer36(&other);
    SetSpecialPointer176(&target);
    EXPECT_EQ(KSDLL_GetPointerSv(kSvSpecialPointer), &other);
    EXPECT_EQ(KSDLL_GetPointerSv(kSvSpecialBlock), &target);
}

TEST_F(Process, UserStringsAreCopiesWithRoom) {
    std::wstring text = L"first";
    KSDLL_SetUserString(0, text.c_str());
    KSDLL_SetUserString(399, L"");
    text = L"other";
    EXPECT_STREQ(KSDLL_GetUserString(0), L"first");
    std::wcscat(KSDLL_GetUserString(0), L"0123456789"); // the room that is promised
    EXPECT_STREQ(KSDLL_GetUserString(0), L"first0123456789");
    KSDLL_SetUserString(0, KSDLL_GetUserString(0) + 5); // from itself
    EXPECT_STREQ(KSDLL_GetUserString(0), L"0123456789");
    for (const std::int32_t index : {-1, 400, std::numeric_limits<std::int32_t>::max()}) {
        KSDLL_SetUserString(index, L"no");
        EXPECT_EQ(KSDLL_GetUserString(index), nullptr) << index;
    }
    KSDLL_SetUserString(0, nullptr);
    EXPECT_EQ(KSDLL_GetUserString(0), nullptr);
    EXPECT_EQ(KSDLL_AddText(nullptr), nullptr);
}

TEST_F(Process, CommandLinesAreSplitInPlace) {
    struct Case {
        const wchar_t* line;
        std::vector<std::wstring> arguments;
    };

    for (const auto& [line, expected] : {Case{L"\"two words\" plain", {L"two words", L"plain"}},
                                         {L"a b  c ", {L"a", L"b", L"c"}},
                                         {L"", {}},
                                         {L"   ", {}},
                                         {L"  a", {L"a"}},
                                         {L"\"open end", {L"open end"}},
                                         {L"\"\" b", {L"", L"b"}},
                                         {L"\"a\"b", {L"a", L"b"}},
                                         {L"a\"b c\"", {L"a\"b", L"c\""}},
                                         {L"a\tb", {L"a", L"b"}},
                                         {L"\"", {L""}},
                                         {L"1 2 3 4 5 6", {L"1", L"2", L"3", L"4"}}}) {
        std::wstring buffer = line;
        wchar_t unused = 0;
        std::array<wchar_t*, 6> slots{&unused, nullptr, nullptr, nullptr, nullptr, &unused};
        const std::int32_t used = SplitCommandLine(buffer.data(), slots.data(), 5);
        ASSERT_EQ(used, static_cast<std::int32_t>(expected.size()) + 1) << line;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(std::wstring(slots[i + 1]), expected[i]) << line;
        }
        EXPECT_EQ(slots[0], &unused);
        EXPECT_EQ(slots[5], &unused);
    }
    std::array<wchar_t*, 3> slots{};
    std::wstring line = L"a b";
    EXPECT_EQ(SplitCommandLine(nullptr, slots.data(), 3), 1);
    EXPECT_EQ(SplitCommandLine(line.data(), nullptr, 3), 1);
    EXPECT_EQ(SplitCommandLine(line.data(), slots.data(), 0), 1);
    EXPECT_EQ(SplitCommandLine(line.data(), slots.data(), -1), 1);
}

std::wstring GetSystemPath(std::int32_t size = 600) {
    std::wstring buffer(600, L'#');
    get_system_path(buffer.data(), size);
    return buffer.c_str();
}

TEST_F(Process, TheSystemPathIsTheProgramsFolderUnlessOverridden) {
    const std::wstring folder = std::filesystem::read_symlink("/proc/self/exe").parent_path().wstring();
    EXPECT_EQ(GetSystemPath(), folder);
    override_system_path(L"/opt/plant");
    EXPECT_EQ(GetSystemPath(), L"/opt/plant");
    EXPECT_EQ(GetSystemPath(5), L"/opt");
    EXPECT_EQ(GetSystemPath(1), L"");
    EXPECT_EQ(GetSystemPath(0)[0], L'#');
    const std::wstring longest = L"/" + std::wstring(510, L'x');
    override_system_path(longest.c_str());
    EXPECT_EQ(GetSystemPath(), longest);
    override_system_path((longest + L"x").c_str());
    EXPECT_EQ(GetSystemPath(), folder);
    override_system_path(L"/opt/plant");
    override_system_path(L"");
    EXPECT_EQ(GetSystemPath(), folder);
}

TEST_F(Process, TagsStandForPathsAndTheRunMode) {
    override_system_path(L"/opt/plant");
    SetRunModeName(L"Test");
    const std::wstring here = std::filesystem::current_path().wstring();
    EXPECT_EQ(ExpandKestronaTPathTags(L"{KESTRONA PATH}/a {PATH}/b {path} {KESTRONA PATH}"),
              L"/opt/plant/a " + here + L"/b {path} /opt/plant");
    EXPECT_EQ(ExpandKestronaTPathTags(L"{PATH"), L"{PATH");
    EXPECT_EQ(ExpandMODETag(L"<{MODE}{MODE}>"), L"<TestTest>");
    std::array<wchar_t, 64> buffer{};
    std::wcscpy(buffer.data(), L"x{MODE}y");
    ExpandMODETag(buffer.data());
    EXPECT_STREQ(buffer.data(), L"xTesty");
    std::wcscpy(buffer.data(), L"{KESTRONA PATH}/z");
    ExpandKestronaPathTags(buffer.data());
    EXPECT_STREQ(buffer.data(), L"/opt/plant/z");
    ExpandMODETag(static_cast<wchar_t*>(nullptr));
    ExpandKestronaPathTags(nullptr);
}

TEST_F(Process, SubstitutionScansOnceAndNeverWhatItPutIn) {
    struct Case {
        const wchar_t* text;
        const wchar_t* from;
        const wchar_t* to;
        const wchar_t* result;
    };

    for (const auto& [text, from, to, result] : {Case{L"banana", L"a", L"aa", L"baanaanaa"},
                                                 {L"banana", L"an", L"", L"ba"},
                                                 {L"aaaa", L"aa", L"b", L"bb"},
                                                 {L"aaa", L"aa", L"a", L"aa"},
                                                 {L"abc", L"", L"-", L"-a-b-c-"},
                                                 {L"", L"", L"-", L"-"},
                                                 {L"abc", L"", L"", L"abc"},
                                                 {L"", L"a", L"b", L""},
                                                 {L"abc", L"abcd", L"x", L"abc"},
                                                 {L"abc", L"abc", L"", L""}}) {
        EXPECT_EQ(KSDLL_TStringSubstitute(text, from, to), result) << text;
        std::array<wchar_t, 32> buffer{};
        std::wcscpy(buffer.data(), text);
        KSDLL_StringSubstitute(buffer.data(), from, to);
        EXPECT_STREQ(buffer.data(), result) << text;
    }
    KSDLL_StringSubstitute(nullptr, L"a", L"b");
}

bool NoHookStands() {
    const SequencerHooks& h = GetSequencerHooks();
    return !kss_SynchroniseOp && !kss_Clear && !kss_ReadFile && !kss_SaveFile && !RefreshLaunchPoints &&
           !kss_RedrawOp && !FreeOrderArrays && !IsTableUsedBySequencer && !kss_ClearUndo && !h.after_sort &&
           !h.first_after_insert && !h.second_after_insert && !h.before_delete && !h.before_delete_many &&
           !h.after_delete && !h.after_delete_many;
}

TEST_F(Process, HooksAreKeptByPosition) {
    EXPECT_TRUE(NoHookStands());
    const KsHook plain[] = {[] {}, [] { static_cast<void>(1); },
                            [] {
                                static_cast<void>(2);
                            }};
    const KsRecordHook one[] = {[](std::int32_t) {}, [](std::int32_t) {},
                                [](std::int32_t) {
                                }};
    const KsRecordsHook many[] = {[](std::vector<std::int32_t>&) {},
                                  [](std::vector<std::int32_t>&) {
                                  }};
    const KsTestHook test = [](std::int32_t) {
        return true;
    };
    SetSequencerFunctions(nullptr, plain[0], nullptr, nullptr, plain[1], nullptr, many[0], nullptr, one[0], one[1],
                          one[2], many[1], nullptr, nullptr, nullptr, test, plain[2], plain[0]);
    EXPECT_TRUE(kss_Clear == plain[0] && RefreshLaunchPoints == plain[1] && kss_ClearUndo == plain[2]);
    EXPECT_TRUE(IsTableUsedBySequencer == test && FreeOrderArrays == nullptr && kss_RedrawOp == nullptr);
    const SequencerHooks& hooks = GetSequencerHooks();
    EXPECT_TRUE(hooks.after_sort == many[0] && hooks.before_delete_many == many[1]);
    EXPECT_TRUE(hooks.first_after_insert == one[0] && hooks.second_after_insert == one[1]);
    EXPECT_TRUE(hooks.before_delete == one[2] && hooks.after_delete == nullptr && hooks.after_delete_many == nullptr);
    EXPECT_EQ(LibraryEntry(1), 0); // attached when it was loaded
    for (const std::int32_t reason : {2, 0, 3}) {
        EXPECT_EQ(LibraryEntry(reason), 1) << reason;
    }
    EXPECT_FALSE(NoHookStands());
    ClearSequencerFunctions();
    EXPECT_TRUE(NoHookStands());
}

TEST_F(Process, DebugTextsGoThroughTheLogger) {
    RecordingLogger& logger = InstallRecordingLogger();
    KSDLL_WriteDebug(L"plain");
    KSDLL_WriteDebug(std::wstring(L"string"));
    CreateLogEntry(L"first", L"second");
    EXPECT_EQ(logger.lines, (std::vector<std::wstring>{L"plain", L"string"}));
    EXPECT_EQ(logger.entries, std::vector<std::wstring>{L"first|second"});
    EXPECT_FALSE(IsDebugLogEnabled());
    EnableDebugLogging();
    EXPECT_TRUE(IsDebugLogEnabled());

    struct Case {
        std::uint32_t categories;
        std::uint32_t flags;
        bool enabled;
        bool written;
        bool forced;
    };

    for (const auto [categories, flags, enabled, written, forced] : {Case{0, 33, false, false, false},
                                                                     {0xffffffff, 1, false, false, false},
                                                                     {32, 33, false, true, true},
                                                                     {32, 32, false, false, false},
                                                                     {64, 33, false, false, false},
                                                                     {0, 0, true, true, false},
                                                                     {32, 33, true, true, true},
                                                                     {0xffffffff, 1, true, true, false}}) {
        logger.extended.clear();
        SetDebugCategories(categories);
        if (enabled) {
            EnableExtendedDebugLogging();
        }
        KSDLL_WriteDebugEx(std::wstring(L"line"), flags);
        ASSERT_EQ(logger.extended.size(), written ? 1u : 0u) << flags;
        EXPECT_TRUE(!written || (logger.extended[0].forced == forced && logger.extended[0].flags == flags)) << flags;
    }
}

TEST_F(Process, ServicesExistWithoutAHostAndAreFreedWhenReplaced) {
    DefaultLogger* const silent = LogManager::getInstance();
    ASSERT_NE(silent, nullptr);
    EXPECT_EQ(LogManager::getInstance(), silent);
    CoreMessage* const messages = MessageManager::getInstance();
    EXPECT_EQ(messages->GetMessage(21001), L"");
    wchar_t buffer[4] = {L'x', L'x', L'x', L'x'};
    messages->GetMessageText(1, buffer, 4);
    EXPECT_STREQ(buffer, L"");
    RecordingMessages& installed = InstallRecordingMessages();
    installed.texts[1] = L"long text";
    installed.GetMessageText(1, buffer, 4);
    EXPECT_STREQ(buffer, L"lon");
    installed.GetMessageText(1, buffer, 0);
    installed.GetMessageText(1, nullptr, 4);
    EXPECT_NE(ProgressManager::getInstance(), nullptr);
}

TEST_F(Process, EverythingGoesBackToWhereItStarted) {
    SetRunModeName(L"x");
    SetDebugCategories(4);
    SetListRowOverride(5);
    SetSequencerOrderFormat(5);
    SetLegacyCodePage("x");
    SetCurrentModule(KestronaModule::Sequencer);
    EXPECT_EQ(KSDLL_GetModuleName(), 2);
    ExecutionState::Instance().set_IsRunningHeadless(true);
    EnableDebugLogging();
    KSDLL_SetDoubleSv(kSvFixedNow, 3.0);
    KSDLL_SetUserString(1, L"x");
    kss_Clear = [] {
    };
    { const FreshProcess again; }
    EXPECT_TRUE(GetRunModeName().empty() && GetDebugCategories() == 0 && GetLegacyCodePage() == "windows-1252");
    EXPECT_TRUE(GetListRowOverride() == -1 && GetSequencerOrderFormat() == -1);
    EXPECT_EQ(GetCurrentModule(), KestronaModule::None);
    EXPECT_FALSE(ExecutionState::Instance().get_IsRunningHeadless());
    EXPECT_FALSE(IsDebugLogEnabled());
    EXPECT_EQ(KSDLL_GetDoubleSv(kSvFixedNow), -1.0);
    EXPECT_EQ(KSDLL_GetUserString(1), nullptr);
    EXPECT_TRUE(NoHookStands());
}

} // namespace

} // namespace Kestrona
