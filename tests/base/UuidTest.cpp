#include "base/Uuid.h"

#include <gtest/gtest.h>

namespace sunpane {
namespace {

TEST(Uuid, WritesUpperCaseAndReadsEitherCase) {
    const auto uuid = Uuid::parse("6ba7b810-9DAD-11d1-80b4-00c04fd430c8");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->toString(), "6BA7B810-9DAD-11D1-80B4-00C04FD430C8");
    for (const char* bad : {"", "6ba7b8109dad11d180b400c04fd430c8", "6ba7b810-9dad-11d1-80b4-00c04fd430cg",
                            "6ba7b810-9dad-11d1-80b4-00c04fd430c8 ", "6ba7b810x9dad-11d1-80b4-00c04fd430c8"}) {
        EXPECT_FALSE(Uuid::parse(bad)) << bad;
    }
}

TEST(Uuid, RandomOnesAreVersionFourAndDiffer) {
    const Uuid a = Uuid::random();
    const std::string text = a.toString();
    EXPECT_EQ(text[14], '4');
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
    EXPECT_EQ(Uuid::parse(text), a);
    EXPECT_NE(Uuid::random(), a);
}

}  // namespace
}  // namespace sunpane
