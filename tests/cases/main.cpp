/// The program of cases. With --matrix it ends with a line for each case and its outcome.

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>

#include "tests/cases/road.h"

namespace test {
namespace {

class Matrix final : public ::testing::EmptyTestEventListener {
 public:
  void OnTestProgramEnd(const ::testing::UnitTest& program) override {
    for (int i = 0; i < program.total_test_suite_count(); ++i) Print(*program.GetTestSuite(i));
  }

 private:
  static void Print(const ::testing::TestSuite& suite) {
    for (int i = 0; i < suite.total_test_count(); ++i) {
      const ::testing::TestInfo& test = *suite.GetTestInfo(i);
      if (!test.should_run()) continue;
      std::cout << suite.name() << "." << test.name() << " | " << TheRoad().Name() << " | " << Outcome(*test.result())
                << "\n";
    }
  }
  static std::string Outcome(const ::testing::TestResult& result) {
    if (result.Failed()) return "failed";
    if (result.Skipped()) return std::string("not possible: ") + result.GetTestPartResult(0).message();
    return "passed";
  }
};

}  // namespace
}  // namespace test

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (argc > 1 && std::strcmp(argv[1], "--matrix") == 0) {
    ::testing::UnitTest::GetInstance()->listeners().Append(new test::Matrix);
  }
  return RUN_ALL_TESTS();
}
