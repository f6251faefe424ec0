/// The cases over our own layer, in this process. With --matrix the program ends with its column: case and outcome.

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>

#include "platform/portable/empty_machine.h"
#include "platform/portable/instruments.h"
#include "simulator/notebook_machine.h"
#include "tests/cases/road.h"

namespace test {
namespace {

class InProcessRoad final : public Road {
 public:
  std::string Name() const override { return "in process"; }
  std::string WhyNot(Need /*need*/) const override { return ""; }
  void Place(const std::shared_ptr<simulator::Notebook>& notebook) override {
    EXPECT_TRUE(platform::UseMachine(simulator::MakeMachine(notebook)));
  }
  void TakeAway() override {
    EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
    EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::EmptyMachine>()));
  }
};

/// Prints what became of each case.
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

Road& TheRoad() {
  static InProcessRoad road;
  return road;
}

}  // namespace test

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (argc > 1 && std::strcmp(argv[1], "--matrix") == 0) {
    ::testing::UnitTest::GetInstance()->listeners().Append(new test::Matrix);
  }
  return RUN_ALL_TESTS();
}
