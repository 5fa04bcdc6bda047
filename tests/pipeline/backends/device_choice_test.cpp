// SPDX-License-Identifier: Apache-2.0
// Which device is taken, from what is asked for, what is set, and what the machine has.
#include "pipeline/backends/device_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumora::test {
namespace {

TEST(SettleWish, TakesTheSettingOnlyWhereNothingElseIsAskedFor) {
  const struct {
    Device asked;
    const char* setting;
    Device device;
    const char* reason;
  } rows[] = {
      {Device::Auto, nullptr, Device::Auto, ""},
      {Device::Auto, "", Device::Auto, ""},
      {Device::Auto, "auto", Device::Auto, ""},
      {Device::Auto, "gl", Device::Gl, "LUMORA_DEVICE asks for it"},
      {Device::Auto, "cpu", Device::Cpu, "LUMORA_DEVICE asks for it"},
      {Device::Gl, "cpu", Device::Gl, "it was asked for"},
      {Device::Gl, nullptr, Device::Gl, "it was asked for"},
      {Device::Cpu, "gl", Device::Cpu, "it was asked for"},
      {Device::Cpu, "nonsense", Device::Cpu, "it was asked for"},
  };
  for (const auto& [asked, setting, device, reason] : rows) {
    DeviceChoice wish{Device::Gl, "old"};
    EXPECT_TRUE(SettleWish(asked, setting, &wish).ok());
    EXPECT_EQ(wish.device, device) << Name(asked) << ", " << (setting != nullptr ? setting : "-");
    EXPECT_EQ(wish.reason, reason);
  }
}

TEST(SettleWish, RefusesWhatIsNoDevice) {
  DeviceChoice wish;
  Status status = SettleWish(Device::Auto, "gpu", &wish);
  EXPECT_EQ(status.code, StatusCode::InvalidArgument);
  EXPECT_EQ(status.message, "LUMORA_DEVICE is \"gpu\", but it has to be auto, gl or cpu");
  status = SettleWish(static_cast<Device>(7), nullptr, &wish);
  EXPECT_EQ(status.code, StatusCode::InvalidArgument);
  EXPECT_EQ(status.message, "there is no device 7");
}

}  // namespace
}  // namespace lumora::test
