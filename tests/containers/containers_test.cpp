#include "quillon/containers/names.h"

#include <gtest/gtest.h>

TEST(NameHash, KnownValue) { EXPECT_EQ(0x02ABE28Au, __mystring_hash("abc")); }
