#include <gtest/gtest.h>
#include "automation/Convert.hpp"
using namespace TessarkAO;
TEST(Smoke, Format) { EXPECT_EQ(FormatDouble(0.1 + 0.2), "0.3"); }
