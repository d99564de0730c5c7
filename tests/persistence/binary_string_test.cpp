// Scrambled texts of compiled definitions. That another hand reads and writes the same is shown by whole files.
#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"

#include <kestrona/binary_strings.h>
#include <kestrona/host_settings.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace Kestrona::Testing {

namespace {

std::pair<std::int32_t, std::wstring> ReadOne(std::FILE* file, bool wide = true) {
    wchar_t* text = nullptr;
    const std::int32_t result = KSDLL_ReadBinaryString(file, &text, wide ? 1 : 0);
    const std::unique_ptr<wchar_t, decltype(&std::free)> owner(text, std::free);
    return {result, text != nullptr ? text : L""};
}

class BinaryString : public testing::Test {
protected:
    Fixtures::FreshProcess process;
    Fixtures::RecordingMessages& messages = Fixtures::InstallRecordingMessages();
};

TEST_F(BinaryString, EightBitTextsAreInTheLegacyCodePage) {
    const ScratchFolder folder;
    folder.Write("lines", "4be9808e00\n\n"); // K, e acute, euro, Z caron, the end, more
    ASSERT_TRUE(RunOracle("binary_strings.py", folder.Path("lines") + ' ' + folder.Path("file")));
    for (const auto& [page, text] :
         {std::pair{"windows-1252", L"K\u00e9\u20ac\u017d"}, {"windows-1251", L"K\u0439\u0402\u040b"}}) {
        SetLegacyCodePage(page);
        KSDLL_ResetChecksum();
        EXPECT_EQ(ReadOne(FileOf(folder.Read("file")).get(), false).second, text) << page;
    }
}

TEST_F(BinaryString, EmptyTextsAndTheEndMarkerTreatTheTargetAsTold) {
    wchar_t other[] = L"other";
    for (const auto& [word, result] : {std::pair{0, kBinaryStringText}, {-1, kBinaryStringEnd}}) {
        const File file = FileOf({reinterpret_cast<const char*>(&word), sizeof word});
        wchar_t* text = other;
        EXPECT_EQ(KSDLL_ReadBinaryString(file.get(), &text, 1), result);
        EXPECT_EQ(text, word == 0 ? nullptr : other);
        std::rewind(file.get());
        text = other;
        EXPECT_EQ(KSDLL_ReadBinaryString(file.get(), &text, nullptr, 1), result);
        EXPECT_EQ(text, other);
    }
    const File file(std::tmpfile());
    KSDLL_WriteBinaryString(file.get(), L"");
    KSDLL_WriteBinaryString(file.get(), nullptr);
    EXPECT_EQ(BytesOf(file.get()), std::string(8, '\0'));
}

// Reads as a walk over a list does.
void ReadAll(const std::string& bytes) {
    KSDLL_ResetChecksum();
    const File file = FileOf(bytes);
    std::size_t reads = 0;
    while (ReadOne(file.get()).first == kBinaryStringText) {
        ASSERT_LE(++reads, bytes.size() / sizeof(std::int32_t));
    }
}

TEST_F(BinaryString, EveryDamageEndsInOneMessageAtMost) {
    const File written(std::tmpfile());
    KSDLL_ResetChecksum();
    for (std::size_t length = 0; length < 12; ++length) { // a checksum stands behind the eighth
        KSDLL_WriteBinaryString(written.get(), (L"\u65e5\U0001F9A6" + std::wstring(5 * length, L'a')).c_str());
    }
    KSDLL_WriteBinaryString(written.get(), L"");
    const std::string bytes = BytesOf(written.get()) + "\xFF\xFF\xFF\xFF";
    const auto expect = [&](std::size_t at, bool must_report) {
        ASSERT_LE(messages.boxes.size(), 1U) << at;
        EXPECT_FALSE(must_report && messages.boxes.empty()) << at;
        for (const auto& box : messages.boxes) {
            EXPECT_TRUE(box.text.ends_with(L"Configuration file is corrupt!")) << at;
            EXPECT_EQ(box.caption, L"");
            EXPECT_EQ(box.style, 0x30);
        }
        messages.boxes.clear();
    };
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        ASSERT_NO_FATAL_FAILURE(ReadAll(bytes.substr(0, at)));
        expect(at, true);
        for (const int mask : {0x01, 0x80, 0xFF}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ mask);
            ASSERT_NO_FATAL_FAILURE(ReadAll(damaged));
            expect(at, false);
        }
    }
    ASSERT_NO_FATAL_FAILURE(ReadAll(bytes));
    EXPECT_TRUE(messages.boxes.empty());
    for (const std::string& word : {std::string("\xFE\xFF\xFF\xFF"), std::string("\xFF\xFF\xFF\x7F")}) {
        ASSERT_NO_FATAL_FAILURE(ReadAll(word + "ab"));
        expect(0, true);
    }
}

} // namespace

} // namespace Kestrona::Testing
