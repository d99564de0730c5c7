// Process-wide state: save variables, user strings, paths, tags, command lines, hooks, logs, settings, services.
#include "fixtures/recording_services.h"

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

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

class Process : public testing::Test {
protected:
    FreshProcess process;
};

TEST_F(Process, SaveVariablesAreOneBlockOfBytes) {
    EXPECT_EQ(KSDLL_GetDoubleSv(kSvFixedNow), -1.0);
    KSDLL_SetFloatSv(kSvVersionMark, 8.01);
    EXPECT_EQ(KSDLL_GetLongSv(kSvVersionMark), 0x410028F6);
    KSDLL_SetDoubleSv(101, 0.25); // no alignment asked for
    EXPECT_EQ(KSDLL_GetDoubleSv(101), 0.25);
    KSDLL_SetLongSv(4092, 5);
    KSDLL_SetDoubleSv(4089, 7.0); // one byte too far
    EXPECT_EQ(KSDLL_GetLongSv(4092), 5);
    for (const std::int32_t offset : {-1, 4093, 4096, kHighest, kLowest}) {
        KSDLL_SetLongSv(offset, 7);
        KSDLL_SetDoubleSv(offset, 7.0);
        KSDLL_SetFloatSv(offset, 7.0);
        EXPECT_EQ(KSDLL_GetLongSv(offset), 0) << offset;
        EXPECT_EQ(KSDLL_GetDoubleSv(offset), 0.0) << offset;
    }
}

TEST_F(Process, PointersStandBesideTheBlock) {
    int target = 0;
    int other = 0;
    KSDLL_SetLongSv(kSvDefinitionEnd, 1234);
    for (const std::int32_t offset : {+kSvHelpFile, +kSvSpecialPointer, +kSvSpecialBlock, -4, 4096}) {
        KSDLL_SetPointerSv(offset, &target);
        EXPECT_EQ(KSDLL_GetPointerSv(offset), offset == kSvHelpFile ? &target : nullptr) << offset;
    }
    EXPECT_EQ(KSDLL_GetLongSv(kSvDefinitionEnd), 1234);
    EXPECT_EQ(KSDLL_GetDoubleSv(kSvFixedNow), -1.0);
    SetSpecialPointer36(&other);
    SetSpecialPointer176(&target);
    EXPECT_EQ(KSDLL_GetPointerSv(kSvSpecialPointer), &other);
    EXPECT_EQ(KSDLL_GetPointerSv(kSvSpecialBlock), &target);
}

TEST_F(Process, UserStringsAreCopiesWithRoom) {
    std::wstring text = L"first";
    KSDLL_SetUserString(0, text.c_str());
    text = L"other";
    std::wcscat(KSDLL_GetUserString(0), L"0123456789"); // the room that is promised
    EXPECT_STREQ(KSDLL_GetUserString(0), L"first0123456789");
    KSDLL_SetUserString(0, KSDLL_GetUserString(0) + 5); // from itself
    EXPECT_STREQ(KSDLL_GetUserString(0), L"0123456789");
    KSDLL_SetUserString(0, nullptr);
    for (const std::int32_t index : {-1, 400, kHighest}) {
        KSDLL_SetUserString(index, L"no");
        EXPECT_EQ(KSDLL_GetUserString(index), nullptr) << index;
    }
    EXPECT_EQ(KSDLL_GetUserString(0), nullptr);
    EXPECT_EQ(KSDLL_AddText(nullptr), nullptr);
}

TEST_F(Process, CommandLinesAreSplitInPlace) {
    // Each argument with a bar behind it.
    for (const auto& [line, expected] : {std::pair{L"\"two words\" plain", L"two words|plain|"},
                                         {L"a b  c ", L"a|b|c|"},
                                         {L"   ", L""},
                                         {L"  a", L"a|"},
                                         {L"\"open end", L"open end|"},
                                         {L"\"\" b", L"|b|"},
                                         {L"\"a\"b", L"a|b|"},
                                         {L"a\"b c\"", L"a\"b|c\"|"},
                                         {L"a\tb", L"a|b|"},
                                         {L"\"", L"|"},
                                         {L"1 2 3 4 5 6", L"1|2|3|4|"}}) {
        std::wstring buffer = line;
        wchar_t unused = 0;
        std::array<wchar_t*, 6> slots{&unused, nullptr, nullptr, nullptr, nullptr, &unused};
        const std::int32_t used = SplitCommandLine(buffer.data(), slots.data(), 5);
        std::wstring arguments;
        for (std::size_t i = 1; i < static_cast<std::size_t>(used); ++i) {
            arguments += std::wstring(slots.at(i)) + L"|";
        }
        EXPECT_EQ(arguments, expected) << line;
        EXPECT_TRUE(slots[0] == &unused && slots[5] == &unused) << line;
    }
    std::array<wchar_t*, 3> slots{};
    std::wstring line = L"a b";
    EXPECT_EQ(SplitCommandLine(nullptr, slots.data(), 3), 1);
    EXPECT_EQ(SplitCommandLine(line.data(), nullptr, 3), 1);
    EXPECT_EQ(SplitCommandLine(line.data(), slots.data(), 0), 1);
}

std::wstring GetSystemPath(std::int32_t size = 600) {
    std::wstring buffer(600, L'#');
    get_system_path(buffer.data(), size);
    return buffer.substr(0, buffer.find(L'\0'));
}

TEST_F(Process, TheSystemPathIsTheProgramsFolderUnlessOverridden) {
    const std::wstring folder = std::filesystem::read_symlink("/proc/self/exe").parent_path().wstring();
    const std::wstring longest = L"/" + std::wstring(510, L'x');
    EXPECT_EQ(GetSystemPath(), folder);
    for (const std::wstring& given : {std::wstring(L"/opt/plant"), longest, longest + L"x", std::wstring()}) {
        override_system_path(given.c_str());
        EXPECT_EQ(GetSystemPath(), given.empty() || given.size() > longest.size() ? folder : given);
    }
    override_system_path(L"/opt/plant");
    EXPECT_EQ(GetSystemPath(5), L"/opt");
    EXPECT_EQ(GetSystemPath(1), L"");
    EXPECT_EQ(GetSystemPath(0)[0], L'#');
}

TEST_F(Process, TagsStandForPathsAndTheRunMode) {
    override_system_path(L"/opt/plant");
    SetRunModeName(L"Test");
    const std::wstring here = std::filesystem::current_path().wstring();
    EXPECT_EQ(ExpandKestronaTPathTags(L"{KESTRONA PATH}/a {PATH}/b {path} {KESTRONA PATH} {PATH"),
              L"/opt/plant/a " + here + L"/b {path} /opt/plant {PATH");
    EXPECT_EQ(ExpandMODETag(L"<{MODE}{MODE}>"), L"<TestTest>");
    wchar_t buffer[64] = L"{KESTRONA PATH}/x{MODE}y";
    ExpandMODETag(buffer);
    ExpandKestronaPathTags(buffer);
    EXPECT_STREQ(buffer, L"/opt/plant/xTesty");
    ExpandMODETag(static_cast<wchar_t*>(nullptr));
    ExpandKestronaPathTags(nullptr);
}

TEST_F(Process, SubstitutionScansOnceAndNeverWhatItPutIn) {
    for (const auto& [text, from, to, result] : {std::tuple{L"banana", L"a", L"aa", L"baanaanaa"},
                                                 {L"banana", L"an", L"", L"ba"},
                                                 {L"aaa", L"aa", L"a", L"aa"},
                                                 {L"abc", L"", L"-", L"-a-b-c-"},
                                                 {L"", L"", L"-", L"-"},
                                                 {L"abc", L"", L"", L"abc"},
                                                 {L"abc", L"abcd", L"x", L"abc"}}) {
        EXPECT_EQ(KSDLL_TStringSubstitute(text, from, to), result) << text;
        std::array<wchar_t, 32> buffer{};
        std::wcscpy(buffer.data(), text);
        KSDLL_StringSubstitute(buffer.data(), from, to);
        EXPECT_STREQ(buffer.data(), result) << text;
    }
    KSDLL_StringSubstitute(nullptr, L"a", L"b");
}

// Those for records are told apart where records come, go and are sorted.
TEST_F(Process, HooksAreKeptByPosition) {
    const KsHook plain[] = {[] {}, [] { static_cast<void>(1); },
                            [] {
                                static_cast<void>(2);
                            }};
    const KsTestHook test = [](std::int32_t) {
        return true;
    };
    SetSequencerFunctions(nullptr, plain[0], nullptr, nullptr, plain[1], nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr, nullptr, nullptr, nullptr, test, plain[2], plain[0]);
    EXPECT_TRUE(kss_Clear == plain[0] && RefreshLaunchPoints == plain[1] && kss_ClearUndo == plain[2]);
    EXPECT_TRUE(IsTableUsedBySequencer == test && FreeOrderArrays == nullptr && kss_RedrawOp == nullptr);
    ClearSequencerFunctions();
    EXPECT_TRUE(!kss_Clear && !RefreshLaunchPoints && !kss_ClearUndo && !IsTableUsedBySequencer);
    EXPECT_EQ(LibraryEntry(1), 0); // attached when it was loaded
    for (const std::int32_t reason : {2, 0, 3}) {
        EXPECT_EQ(LibraryEntry(reason), 1) << reason;
    }
}

TEST_F(Process, DebugTextsGoThroughTheLogger) {
    RecordingLogger& logger = InstallRecordingLogger();
    KSDLL_WriteDebug(L"plain");
    KSDLL_WriteDebug(std::wstring(L"string"));
    CreateLogEntry(L"first", L"second");
    EXPECT_EQ(logger.lines, (std::vector<std::wstring>{L"plain", L"string"}));
    EXPECT_EQ(logger.entries, std::vector<std::wstring>{L"first|second"});

    for (const auto& [categories, flags, enabled, written, forced] : {std::tuple{0U, 33U, false, false, false},
                                                                      {0xffffffffU, 1U, false, false, false},
                                                                      {32U, 33U, false, true, true},
                                                                      {32U, 32U, false, false, false},
                                                                      {64U, 33U, false, false, false},
                                                                      {0U, 0U, true, true, false},
                                                                      {32U, 33U, true, true, true}}) {
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

TEST_F(Process, MessagesExistWithoutAHostAndAreCutToTheBuffer) {
    wchar_t buffer[4] = {L'x', L'x', L'x', L'x'};
    MessageManager::getInstance()->GetMessageText(1, buffer, 4);
    EXPECT_STREQ(buffer, L"");
    RecordingMessages& installed = InstallRecordingMessages();
    installed.texts[1] = L"long text";
    installed.GetMessageText(1, buffer, 4);
    EXPECT_STREQ(buffer, L"lon");
    installed.GetMessageText(1, buffer, 0);
    installed.GetMessageText(1, nullptr, 4);
}

} // namespace

} // namespace Kestrona
