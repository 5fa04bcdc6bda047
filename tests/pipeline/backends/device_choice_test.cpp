// SPDX-License-Identifier: Apache-2.0
// Which device is taken, from what is asked for, what is set, and what the machine has.
#include "pipeline/backends/device_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumora::test {
namespace {

/// A machine that only says what it has, and notes what it was asked.
class ToldMachine : public Candidates {
 public:
  bool node = true;
  Status display;  ///< of opening gl
  DeviceInfo gl;
  Status cpu;  ///< of opening cpu
  std::string asked;

  bool HasGpuNode() override {
    asked += "node,";
    return node;
  }
  Status OpenGl() override {
    asked += "gl,";
    return display;
  }
  DeviceInfo GlDevice() override {
    asked += "renderer,";
    return gl;
  }
  Status OpenCpu() override {
    asked += "cpu,";
    return cpu;
  }
};

const Status kNoDisplay = {StatusCode::NoDisplay, "there is no display"};
const Status kShort = {StatusCode::EngineFailed, "out of memory"};
constexpr char kHardware[] = "Mesa Intel(R) UHD Graphics 620 (KBL GT2)";
constexpr char kSoftware[] = "llvmpipe (LLVM 15.0.6, 256 bits)";

DeviceInfo Renderer(const char* name, DisplaySource display = DisplaySource::Device) {
  DeviceInfo info;
  info.renderer = name;
  info.display = display;
  return info;
}

// All that the choice depends on: asked x set x node x display x renderer.
TEST(ChooseDevice, FollowsItsTable) {
  const Device kDevices[] = {Device::Auto, Device::Gl, Device::Cpu};
  const std::vector<const char*> settings = {nullptr, "", "auto", "gl", "cpu"};
  int rows = 0;
  for (const Device asked : kDevices) {
    for (const char* const setting : settings) {
      for (const bool node : {false, true}) {
        for (const bool display : {false, true}) {
          for (const bool hardware : {false, true}) {
            SCOPED_TRACE(testing::Message()
                         << Name(asked) << ", set " << (setting != nullptr ? setting : "nothing")
                         << (node ? ", node" : "") << (display ? ", display" : "")
                         << (hardware ? ", hardware" : ""));
            ToldMachine machine;
            machine.node = node;
            if (!display) machine.display = kNoDisplay;
            machine.gl = Renderer(hardware ? kHardware : kSoftware);
            DeviceChoice choice{Device::Auto, "old"};
            const Status status = ChooseDevice(asked, setting, machine, &choice);

            const std::string set = setting != nullptr ? setting : "";
            const bool wants_gl = asked == Device::Gl || (asked == Device::Auto && set == "gl");
            const bool wants_cpu = asked == Device::Cpu || (asked == Device::Auto && set == "cpu");
            const bool takes_gl = wants_gl || (!wants_cpu && node && display && hardware);
            EXPECT_EQ(status.code, wants_gl && !display ? StatusCode::NoDisplay : StatusCode::Ok);
            EXPECT_EQ(choice.device, takes_gl ? Device::Gl : Device::Cpu);
            EXPECT_NE(choice.reason, "old");
            EXPECT_NE(choice.reason, "");
            // Nothing is asked that is known, and the drivers of machines without a GPU stay away.
            EXPECT_EQ(machine.asked, wants_gl    ? "gl,"
                                     : wants_cpu ? "cpu,"
                                     : !node     ? "node,cpu,"
                                     : !display  ? "node,gl,cpu,"
                                     : hardware  ? "node,gl,renderer,"
                                                 : "node,gl,renderer,cpu,");
            ++rows;
          }
        }
      }
    }
  }
  EXPECT_EQ(rows, 3 * 5 * 2 * 2 * 2);
}

TEST(ChooseDevice, SaysWhy) {
  const auto reason = [](ToldMachine machine, Device asked = Device::Auto,
                         const char* setting = nullptr) {
    DeviceChoice choice;
    EXPECT_TRUE(ChooseDevice(asked, setting, machine, &choice).ok());
    return choice.reason;
  };
  ToldMachine machine;
  machine.gl = Renderer(kHardware);
  EXPECT_EQ(reason(machine, Device::Gl, "cpu"), "it was asked for");
  EXPECT_EQ(reason(machine, Device::Auto, "cpu"), "LUMORA_DEVICE asks for it");
  EXPECT_EQ(reason(machine), std::string("gl is drawn by hardware, ") + kHardware);
  machine.gl = Renderer(kSoftware);
  EXPECT_EQ(reason(machine), std::string("gl would be drawn by software, ") + kSoftware);
  machine.gl = Renderer("");
  EXPECT_EQ(reason(machine), "the driver of gl has no name");
  machine.display = kNoDisplay;
  EXPECT_EQ(reason(machine), "gl is not to be had: there is no display");
  machine.node = false;
  EXPECT_EQ(reason(machine), "this machine has no GPU");
}

TEST(ChooseDevice, RefusesWhatIsNoDevice) {
  ToldMachine machine;
  DeviceChoice choice;
  Status status = ChooseDevice(Device::Auto, "gpu", machine, &choice);
  EXPECT_EQ(status.code, StatusCode::InvalidArgument);
  EXPECT_EQ(status.message, "LUMORA_DEVICE is \"gpu\", but it has to be auto, gl or cpu");
  status = ChooseDevice(static_cast<Device>(7), nullptr, machine, &choice);
  EXPECT_EQ(status.code, StatusCode::InvalidArgument);
  EXPECT_EQ(status.message, "there is no device 7");
  EXPECT_EQ(machine.asked, "");
  // A setting is not read where it does not matter.
  EXPECT_TRUE(ChooseDevice(Device::Cpu, "gpu", machine, &choice).ok());
}

TEST(ChooseDevice, TellsWhoWantsGlThatCpuIsThere) {
  ToldMachine machine;
  machine.display = kNoDisplay;
  DeviceChoice choice;
  EXPECT_EQ(ChooseDevice(Device::Gl, nullptr, machine, &choice).message,
            "there is no display; the device cpu needs none of it");
}

// Short memory is no reason to take another device, which the next call would not take.
TEST(ChooseDevice, GivesOnWhatFails) {
  ToldMachine machine;
  machine.display = kShort;
  DeviceChoice choice;
  for (const Device asked : {Device::Auto, Device::Gl}) {
    const Status status = ChooseDevice(asked, nullptr, machine, &choice);
    EXPECT_EQ(status.code, StatusCode::EngineFailed);
    EXPECT_EQ(status.message, "out of memory");
  }
  EXPECT_THAT(machine.asked, testing::Not(testing::HasSubstr("cpu")));
  machine.cpu = kShort;
  machine.node = false;
  EXPECT_EQ(ChooseDevice(Device::Auto, nullptr, machine, &choice).code, StatusCode::EngineFailed);
}

TEST(IsSoftware, KnowsRenderersThatAreProgramsForTheCpu) {
  for (const char* const name : {
           "llvmpipe (LLVM 15.0.6, 256 bits)",
           "softpipe",
           "Mesa OffScreen swrast",
           "Software Rasterizer",
           "zink Vulkan 1.3(llvmpipe (LLVM 15.0.6, 256 bits) (MESA_LLVMPIPE))",
           "zink (lavapipe)",
           "Google SwiftShader",
           "ANGLE (Google, Vulkan 1.3.0 (SwiftShader Device (Subzero) (0x0000C0DE)), SwiftShader)",
           "virgl (LLVMPIPE (LLVM 15.0.6, 256 bits))",
           "D3D12 (Microsoft Basic Render Driver)",
       }) {
    EXPECT_TRUE(IsSoftware(Renderer(name))) << name;
  }
  for (const char* const name : {
           "Mesa Intel(R) UHD Graphics 620 (KBL GT2)",
           "AMD Radeon RX 6600 (navi23, LLVM 15.0.6, DRM 3.49, 6.1.0)",
           "NVIDIA GeForce RTX 3060/PCIe/SSE2",
           "Mali-G78",
           "Adreno (TM) 650",
           "V3D 4.2",
           "SVGA3D; build: RELEASE;  LLVM;",
           "virgl (NVIDIA GeForce GTX 1650)",
           "zink Vulkan 1.3(AMD Radeon RX 6600 (RADV NAVI23))",
       }) {
    EXPECT_FALSE(IsSoftware(Renderer(name))) << name;
  }
  EXPECT_TRUE(IsSoftware(Renderer("Some New Program", DisplaySource::SoftwareDevice)));
}

}  // namespace
}  // namespace lumora::test
