// A wizard that is read beside its window.
#include "J8ProjectWizard/win/BackgroundLooks.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace {

using namespace zoka;

// Whatever reading throws reaches who takes the wizard, once, and the thread goes on.
TEST(BackgroundLooksTest, GivesWhatReadingHasThrown) {
    constexpr DWORD kLong = 20000;  // milliseconds; only a fault takes them
    BackgroundLooks looks;
    looks.read([]() -> XMLNode { throw std::bad_alloc(); });
    ASSERT_TRUE(looks.isRead(kLong));
    EXPECT_THROW(looks.takeRead(kLong), std::bad_alloc);
    looks.read([]() -> XMLNode { throw std::runtime_error("unreadable"); });
    ASSERT_TRUE(looks.isRead(kLong));
    EXPECT_THROW(looks.takeRead(kLong), std::runtime_error);
    EXPECT_FALSE(looks.takeRead(0));
    looks.read([] { return XMLNode(); });
    ASSERT_TRUE(looks.isRead(kLong));
    EXPECT_TRUE(looks.takeRead(kLong));
    // Nobody asks for one any more once another is to be read.
    looks.read([]() -> XMLNode { throw std::bad_alloc(); });
    ASSERT_TRUE(looks.isRead(kLong));
    looks.read([] { return XMLNode(); });
    EXPECT_TRUE(looks.takeRead(kLong));
}

}  // namespace
