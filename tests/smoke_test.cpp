#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora::test {
namespace {

TEST(SampleChart, LoadsAndDrawsTheSampleAirport) {
  Harness h(SampleDir());
  h.load("xwhl");
  const auto trace = h.takeTrace();
  EXPECT_EQ(h.form().controls().cmbAPP.rows.size(), 4u);
  EXPECT_FALSE(Filter(trace, "print 100 100 0,0,0 14 1 XWHL").empty());
}

}  // namespace
}  // namespace velmora::test
