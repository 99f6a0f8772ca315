#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>

extern "C" const std::uintptr_t __stack_chk_guard;

namespace {

// The compiler sees neither how far it writes nor where.
[[gnu::noipa]] void write(char* at, int bytes) {
    std::fill_n(at, bytes, 'x');
}
[[gnu::noipa]] int fill(int bytes) {
    char text[8] = {};
    write(text, bytes);
    return text[0];
}

// A text written too far ends the program, without running what it was written over.
TEST(StackGuard, EndsAProgramThatWritesBehindALocalArray) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EQ(fill(8), 'x');
    EXPECT_EXIT(fill(40), testing::ExitedWithCode(static_cast<int>(STATUS_STACK_BUFFER_OVERRUN)), "");
    EXPECT_GT(__stack_chk_guard, 0xffu);
    EXPECT_EQ(__stack_chk_guard & 0xff, 0u);
}

}  // namespace
