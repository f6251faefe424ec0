/// A fixture with a scripted machine under the layer. At its end nothing of the platform's may be alive.
#pragma once

#include <gtest/gtest.h>

#include "platform/standin/instruments.h"
#include "tests/support/scripted_machine.h"

namespace test {

class MachineTest : public ::testing::Test {
 public:
  MachineTest(const MachineTest&) = delete;
  MachineTest& operator=(const MachineTest&) = delete;

 protected:
  MachineTest() { EXPECT_TRUE(platform::UseMachine(machine)); }
  ~MachineTest() override {
    ExpectNothingAlive();
    EXPECT_TRUE(platform::UseMachine(std::make_shared<platform::Machine>()));
  }

  static void ExpectNothingAlive() {
    EXPECT_EQ(platform::CountLive(), platform::LiveCounts{});
    EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
  }

  const std::shared_ptr<ScriptedMachine> machine = std::make_shared<ScriptedMachine>();
};

}  // namespace test
