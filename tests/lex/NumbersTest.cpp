#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <string>

#include "util/Lex.h"

namespace {

// Under a locale whose decimal point is a comma, where the system has one.
struct CommaLocale {
    CommaLocale() {
        for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"}) {
            if (std::setlocale(LC_ALL, name)) {
                break;
            }
        }
    }
    ~CommaLocale() { std::setlocale(LC_ALL, "C"); }
};

constexpr int kUntouched = -77;

TEST(Numbers, IntegersWrapAt32Bits) {
    const struct {
        const char* text;
        int value;
        const char* after;  // null: no number
    } rows[] = {
        {"5", 5, ""},
        {" \t-12;", -12, ";"},
        {"007x", 7, "x"},
        {"2147483647", INT_MAX, ""},
        {"-2147483648", INT_MIN, ""},
        {"4294967297", 1, ""},
        {"+5", kUntouched, nullptr},
        {"-", kUntouched, nullptr},
        {"- 5", kUntouched, nullptr},
        {"", kUntouched, nullptr},
        {"\n5", kUntouched, nullptr},
        {nullptr, kUntouched, nullptr},
    };
    for (const auto& row : rows) {
        int value = kUntouched;
        EXPECT_STREQ(CLex::ScanIntValue(row.text, value), row.after);
        EXPECT_EQ(value, row.value) << (row.text ? row.text : "null");
    }
}

TEST(Numbers, DecimalsAreReadInTwoPartsWhateverTheLocale) {
    const CommaLocale locale;
    const struct {
        const char* text;
        double value;
        const char* after;
    } rows[] = {
        {"0.5", 0.5, ""},
        {" -1.25,", -1.25, ","},
        {"3", 3, ""},
        {"3.", 3, ""},
        {"3.x", 3, "x"},
        {"1,5", 1, ",5"},
        {"1e5", 1, "e5"},
        {"2.05", 2.05, ""},
        {"4294967296.5", 0.5, ""},
        {"0.4294967297", 1e-10, ""},  // the fraction's digits wrap, their number stays
        {".5", kUntouched, nullptr},
        {"-.5", kUntouched, nullptr},
        {"", kUntouched, nullptr},
        {nullptr, kUntouched, nullptr},
    };
    for (const auto& row : rows) {
        double value = kUntouched;
        EXPECT_STREQ(CLex::ScanDoubleValue(row.text, value), row.after);
        EXPECT_DOUBLE_EQ(value, row.value) << (row.text ? row.text : "null");
    }
    double endless = 0;
    EXPECT_STREQ(CLex::ScanDoubleValue(("7." + std::string(5000, '3')).c_str(), endless), "");
    EXPECT_EQ(endless, 7.0);
    float narrow = kUntouched;
    EXPECT_STREQ(CLex::ScanFloatValue("-0.1 ", narrow), " ");
    EXPECT_EQ(narrow, -0.1f);
    EXPECT_EQ(CLex::ScanFloatValue("x", narrow), nullptr);
    EXPECT_EQ(narrow, -0.1f);
}

TEST(Numbers, BinariesHave32Bits) {
    const std::string ones(32, '1');
    const struct {
        std::string text;
        unsigned long value;
        const char* after;
    } rows[] = {
        {"101", 5, ""},           {" \t10b", 2, "b"},       {"102", 2, "2"},
        {"-1", 0xFFFFFFFFul, ""}, {ones, 0xFFFFFFFFul, ""}, {ones + "0", 0xFFFFFFFEul, ""},
        {"2", 77, nullptr},       {"", 77, nullptr},
    };
    for (const auto& row : rows) {
        unsigned long value = 77;
        EXPECT_STREQ(CLex::ScanBinValue(row.text.c_str(), value), row.after) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    EXPECT_EQ(CLex::BinToLong("110"), 6);
    EXPECT_EQ(CLex::BinToLong("x"), 0);
    EXPECT_EQ(CLex::BinToLong(nullptr), 0);
    EXPECT_EQ(CLex::BinToLong(ones.c_str()), -1);
    for (const long value : {0L, 1L, 10L, 2147483647L, -1L, -2147483647L - 1}) {
        char buffer[33];
        const int digits = CLex::LongToBin(buffer, value);
        EXPECT_EQ(static_cast<size_t>(digits), std::string(buffer).size());
        EXPECT_EQ(CLex::BinToLong(buffer), value);
    }
    char buffer[33];
    CLex::LongToBin(buffer, 10);
    EXPECT_STREQ(buffer, "1010");
}

TEST(Numbers, AreToldFromOtherTexts) {
    for (const char* number : {"0", "123", "+5", "-5", "+", "-"}) {
        EXPECT_TRUE(CLex::IsDigit(number, static_cast<int>(std::string(number).size()))) << number;
    }
    for (const char* other : {"1.5", "--5", "5-", "a", " 5"}) {
        EXPECT_FALSE(CLex::IsDigit(other, static_cast<int>(std::string(other).size()))) << other;
    }
    EXPECT_TRUE(CLex::IsDigit("12ab", 2));
    EXPECT_FALSE(CLex::IsDigit("12", 3));
    EXPECT_FALSE(CLex::IsDigit("12", 0));
    EXPECT_FALSE(CLex::IsDigit("12", -1));
    EXPECT_FALSE(CLex::IsDigit(nullptr, 1));
}

TEST(Numbers, DecimalsAreWrittenShortWhateverTheLocale) {
    const CommaLocale locale;
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {0.5, "0.5"},
        {3.0, "3"},
        {2.05, "2.05"},
        {2.5, "2.5"},
        {0.0, "0"},
        {100.0, "100"},
        {-1.5, "-1.5"},
        {1e-7, "0"},
        {0.1, "0.1"},
        {123456.789, "123456.789"},
        {0.000001, "0.000001"},
        {1.9999999, "2"},
        {10.100000, "10.1"},
        {1e22, "10000000000000000000000"},
    };
    char buffer[318];
    for (const auto& row : rows) {
        const int len = CLex::FormatFloat(buffer, row.value);
        EXPECT_STREQ(buffer, row.text);
        EXPECT_EQ(static_cast<size_t>(len), std::string(row.text).size());
    }
    EXPECT_EQ(CLex::FormatFloat(buffer, -DBL_MAX), 310);
}

TEST(Numbers, BlockSizeReachesTheEndOfTheClosingLine) {
    const std::string far = std::string(1024, ' ') + "}";
    const struct {
        std::string text;
        long size;
    } rows[] = {
        {"action a {\n}\nrest", 12},
        {"{ a { b }\n} c\n", 13},
        {"a\n{ }\r\n", 6},
        {"{ // }\n}\n", 8},
        {"// {\n{\n}\n", 8},
        {"{}", 2},                                  // the last line has no LF
        {"} {\n", 3},                               // openings of a line come first
        {"}\n{\n}\n", 5},                           // a brace that closes nothing
        {"{\n" + far + "\n}\n", 2 + 1025 + 1 + 1},  // the brace beyond 1024 characters is not seen
        {std::string("{\0\n}\n", 5), 4},
        {"{\n", -1},
        {"{ { }\n", -1},
        {"no braces\n", -1},
        {"", -1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CLex::GetDefinitionBlockSize(row.text.data(), static_cast<long>(row.text.size())), row.size)
            << row.text;
    }
    EXPECT_EQ(CLex::GetDefinitionBlockSize("{\n}\n", 3), 3);
    EXPECT_EQ(CLex::GetDefinitionBlockSize("{\n}\n", 2), -1);
    EXPECT_EQ(CLex::GetDefinitionBlockSize("{}", 0), -1);
    EXPECT_EQ(CLex::GetDefinitionBlockSize("{}", -5), -1);
    EXPECT_EQ(CLex::GetDefinitionBlockSize(nullptr, 5), -1);
}

}  // namespace
