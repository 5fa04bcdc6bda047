// SPDX-License-Identifier: Apache-2.0
// Which display is chosen on machines that offer several, and how the others are left: with an EGL
// of the test's own.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "lumora/platform/display.h"
#include "lumora/platform/gl_api.h"

namespace {

using lumora::platform::DisplayOrigin;
using lumora::platform::GetDisplay;
using lumora::platform::Initialize;
using lumora::platform::Terminate;

struct FakeDisplay {
  bool starts = true;  ///< eglInitialize succeeds
  bool draws = true;   ///< there is a configuration
  bool initialised = false;
};

struct FakeDevice {
  const char* extensions;
  FakeDisplay* display;
};

struct Machine {
  FakeDisplay* standard = nullptr;
  std::vector<FakeDevice> devices;
  FakeDisplay* surfaceless = nullptr;
};

Machine g_machine;

FakeDisplay& Fake(EGLDisplay display) {
  return *static_cast<FakeDisplay*>(display);
}

EGLBoolean EGLAPIENTRY QueryDevices(EGLint capacity, EGLDeviceEXT* devices, EGLint* count) {
  *count = 0;
  for (FakeDevice& device : g_machine.devices) {
    if (*count < capacity) devices[(*count)++] = &device;
  }
  return EGL_TRUE;
}

const char* EGLAPIENTRY QueryDeviceString(EGLDeviceEXT device, EGLint) {
  return static_cast<const FakeDevice*>(device)->extensions;
}

EGLDisplay EGLAPIENTRY GetPlatformDisplay(EGLenum platform, void* native, const EGLint*) {
  return platform == EGL_PLATFORM_DEVICE_EXT ? static_cast<FakeDevice*>(native)->display
                                             : g_machine.surfaceless;
}

}  // namespace

extern "C" {

EGLDisplay EGLAPIENTRY eglGetDisplay(EGLNativeDisplayType) {
  return g_machine.standard;
}

EGLBoolean EGLAPIENTRY eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  if (display == EGL_NO_DISPLAY || !Fake(display).starts) return EGL_FALSE;
  Fake(display).initialised = true;
  if (major != nullptr) *major = 1;
  if (minor != nullptr) *minor = 5;
  return EGL_TRUE;
}

EGLBoolean EGLAPIENTRY eglTerminate(EGLDisplay display) {
  Fake(display).initialised = false;
  return EGL_TRUE;
}

const char* EGLAPIENTRY eglQueryString(EGLDisplay display, EGLint) {
  if (display == EGL_NO_DISPLAY) {
    return "EGL_EXT_platform_device EGL_EXT_device_base EGL_MESA_platform_surfaceless";
  }
  return Fake(display).initialised ? "1.5" : nullptr;
}

EGLBoolean EGLAPIENTRY eglChooseConfig(EGLDisplay display, const EGLint*, EGLConfig*, EGLint,
                                       EGLint* count) {
  *count = Fake(display).draws ? 1 : 0;
  return EGL_TRUE;
}

__eglMustCastToProperFunctionPointerType EGLAPIENTRY eglGetProcAddress(const char* name) {
  using Procedure = __eglMustCastToProperFunctionPointerType;
  if (std::strcmp(name, "eglQueryDevicesEXT") == 0) {
    return reinterpret_cast<Procedure>(&QueryDevices);
  }
  if (std::strcmp(name, "eglQueryDeviceStringEXT") == 0) {
    return reinterpret_cast<Procedure>(&QueryDeviceString);
  }
  if (std::strcmp(name, "eglGetPlatformDisplayEXT") == 0) {
    return reinterpret_cast<Procedure>(&GetPlatformDisplay);
  }
  return nullptr;
}

}  // extern "C"

namespace {

constexpr char kHardware[] = "EGL_EXT_device_drm";
constexpr char kSoftware[] = "EGL_EXT_device_drm EGL_MESA_device_software";

/// A machine with displays of every origin. They live as long as the process, because the library
/// remembers them.
class DisplayChoice : public testing::Test {
 protected:
  DisplayChoice() {
    g_machine = {standard_, {{kSoftware, software_}, {kHardware, hardware_}}, surfaceless_};
  }
  ~DisplayChoice() override {
    // The next test is to choose anew.
    for (FakeDisplay* display : All()) display->starts = display->initialised = false;
    EXPECT_EQ(GetDisplay(), EGL_NO_DISPLAY);
    EXPECT_STREQ(DisplayOrigin(), "none");
  }

  std::vector<FakeDisplay*> All() const { return {standard_, software_, hardware_, surfaceless_}; }

  FakeDisplay* const standard_ = new FakeDisplay;
  FakeDisplay* const software_ = new FakeDisplay;
  FakeDisplay* const hardware_ = new FakeDisplay;
  FakeDisplay* const surfaceless_ = new FakeDisplay;
};

TEST_F(DisplayChoice, TheStandardOneThenHardwareThenSoftwareThenNoSurface) {
  const struct {
    FakeDisplay* display;
    const char* origin;
  } kOrder[] = {{standard_, "default display"},
                {hardware_, "EGL device"},
                {software_, "EGL device (software)"},
                {surfaceless_, "surfaceless platform"}};
  for (const auto& choice : kOrder) {
    EXPECT_EQ(GetDisplay(), choice.display);
    EXPECT_STREQ(DisplayOrigin(), choice.origin);
    choice.display->starts = choice.display->initialised = false;
  }
}

TEST_F(DisplayChoice, ADisplayThatCannotDrawIsLeftAsItWasFound) {
  standard_->draws = hardware_->draws = software_->draws = false;
  software_->initialised = true;  // by somebody else
  EXPECT_EQ(GetDisplay(), surfaceless_);
  EXPECT_FALSE(standard_->initialised);
  EXPECT_FALSE(hardware_->initialised);
  EXPECT_TRUE(software_->initialised);
}

TEST_F(DisplayChoice, AnInitialisedDisplayIsTerminatedByTheLastOfItsUsersOnly) {
  ASSERT_EQ(GetDisplay(), standard_);
  EGLint major = 0, minor = 0;
  ASSERT_EQ(Initialize(standard_, &major, &minor), EGL_TRUE);
  ASSERT_EQ(Initialize(standard_, &major, &minor), EGL_TRUE);
  EXPECT_EQ(Terminate(standard_), EGL_TRUE);
  EXPECT_TRUE(standard_->initialised);
  EXPECT_EQ(Terminate(standard_), EGL_TRUE);
  EXPECT_FALSE(standard_->initialised);
}

}  // namespace
