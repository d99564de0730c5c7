// Scrambled texts of compiled definitions.
#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"

#include <kestrona/binary_strings.h>
#include <kestrona/host_settings.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace Kestrona::Testing {

namespace {

using Texts = std::vector<std::wstring>;

std::wstring RandomText(std::mt19937& random) {
    constexpr wchar_t kLetters[] = {L'a',          L'\x7f', L'\xff', L'\u0100', L'\u65e5',
                                    L'\U0001F9A6', 0xD83E,  0xDDA6,  0xFFFF};
    std::wstring text;
    for (auto length = 1 + random() % 40; length > 0; --length) {
        // A high half is never followed by a low one: that would be a whole character.
        const wchar_t letter = kLetters[random() % std::size(kLetters)];
        text += !text.empty() && text.back() == 0xD83E ? L'b' : letter;
    }
    return text;
}

// Empty texts stand in between.
Texts RandomTexts(std::size_t count, std::mt19937& random) {
    Texts texts;
    for (; count > 0; --count) {
        texts.resize(texts.size() + random() % 3);
        texts.push_back(RandomText(random));
    }
    return texts;
}

std::string Scrambled(const Texts& texts) {
    const File file(std::tmpfile());
    KSDLL_ResetChecksum();
    for (const std::wstring& text : texts) {
        KSDLL_WriteBinaryString(file.get(), text.c_str());
    }
    return BytesOf(file.get());
}

std::string HexLines(const Texts& texts) {
    std::string lines;
    for (const std::wstring& text : texts) {
        for (const char16_t unit : ToUtf16(text)) {
            char digits[5];
            std::snprintf(digits, sizeof digits, "%02x%02x", unit & 0xFFU, static_cast<unsigned>(unit) >> 8U);
            lines += digits;
        }
        lines += '\n';
    }
    return lines;
}

struct Read {
    std::int32_t result;
    std::wstring text;
};

Read ReadOne(std::FILE* file, bool wide = true) {
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

TEST_F(BinaryString, AnotherHandReadsAndWritesTheSame) {
    const ScratchFolder folder;
    std::mt19937 random(8);
    for (const std::size_t count : {1U, 7U, 8U, 9U, 17U}) {
        const Texts texts = RandomTexts(count, random);
        const std::string bytes = Scrambled(texts);
        folder.Write("ours", bytes);
        folder.Write("lines", HexLines(texts));
        ASSERT_TRUE(RunOracle("binary_strings.py", "decode " + folder.Path("ours") + ' ' + folder.Path("decoded")));
        EXPECT_EQ(folder.Read("decoded"), folder.Read("lines")) << count;
        ASSERT_TRUE(RunOracle("binary_strings.py", "encode " + folder.Path("lines") + ' ' + folder.Path("theirs")));
        EXPECT_EQ(folder.Read("theirs"), bytes) << count;

        const File file = FileOf(folder.Read("theirs"));
        KSDLL_ResetChecksum();
        for (const std::wstring& text : texts) {
            const Read read = ReadOne(file.get());
            EXPECT_EQ(read.result, kBinaryStringText);
            EXPECT_EQ(read.text, text);
        }
        EXPECT_EQ(std::fgetc(file.get()), EOF);
    }
    EXPECT_TRUE(messages.boxes.empty());
}

TEST_F(BinaryString, EightBitTextsAreInTheLegacyCodePage) {
    const ScratchFolder folder;
    folder.Write("lines", "4be9808e00\n\n"); // K, e acute, euro, Z caron, the end, more
    ASSERT_TRUE(RunOracle("binary_strings.py", "encode " + folder.Path("lines") + ' ' + folder.Path("file")));
    for (const auto& [page, text] :
         {std::pair{"windows-1252", L"K\u00e9\u20ac\u017d"}, {"windows-1251", L"K\u0439\u0402\u040b"}}) {
        SetLegacyCodePage(page);
        KSDLL_ResetChecksum();
        EXPECT_EQ(ReadOne(FileOf(folder.Read("file")).get(), false).text, text) << page;
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
    EXPECT_EQ(Scrambled({L""}), std::string(4, '\0'));
    const File file(std::tmpfile());
    KSDLL_WriteBinaryString(file.get(), nullptr);
    EXPECT_EQ(BytesOf(file.get()), std::string(4, '\0'));
}

// Reads as a walk over a list does.
void ReadAll(const std::string& bytes) {
    KSDLL_ResetChecksum();
    const File file = FileOf(bytes);
    std::size_t reads = 0;
    while (ReadOne(file.get()).result == kBinaryStringText) {
        ASSERT_LE(++reads, bytes.size() / sizeof(std::int32_t));
    }
}

TEST_F(BinaryString, EveryDamageEndsInOneMessageAtMost) {
    std::mt19937 random(1);
    const std::string bytes = Scrambled(RandomTexts(9, random)) + "\xFF\xFF\xFF\xFF";
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

TEST_F(BinaryString, AForgottenResetShowsAtTheFirstChecksum) {
    const Texts texts(8, L"text");
    const File file = FileOf(Scrambled(texts)); // the state is now that of the end
    std::size_t read = 1;
    while (ReadOne(file.get()).result == kBinaryStringText) {
        ++read;
    }
    EXPECT_EQ(read, texts.size());
    ASSERT_EQ(messages.boxes.size(), 1U);
    EXPECT_EQ(messages.boxes[0].text, L"Checksum is incorrect. Configuration file is corrupt!");
}

} // namespace

} // namespace Kestrona::Testing
