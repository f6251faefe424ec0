/// The cases over our own layer, in this process.

#include <gtest/gtest.h>

#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "simulator/road/notebook_machine.h"
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
  void Settle() override {}
  void TakeAway() override {
    EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
    EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::Machine>()));
  }
};

}  // namespace

Road& TheRoad() {
  static InProcessRoad road;
  return road;
}

}  // namespace test
