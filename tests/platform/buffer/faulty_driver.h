// SPDX-License-Identifier: Apache-2.0
// A GL driver that does one thing wrong. The functions of GL that it concerns are defined by the
// test program, and pass their calls on.
#ifndef LUMORA_TESTS_PLATFORM_FAULTY_DRIVER_H_
#define LUMORA_TESTS_PLATFORM_FAULTY_DRIVER_H_

namespace lumora::test {

enum class DriverFault {
  None,
  ImportRefused,   ///< glImportMemoryFdEXT fails with an error, the descriptor stays the caller's
  StorageRefused,  ///< glTexStorageMem2DEXT fails with an error
  StorageApart,    ///< the texture gets memory of its own
  CopiesLost,      ///< from framebuffers to textures
  DrawsLost,
  ScissorIgnored,
};

/// The fault is there for the life of the object.
class FaultyDriver {
 public:
  explicit FaultyDriver(DriverFault fault);
  ~FaultyDriver();
  FaultyDriver(const FaultyDriver&) = delete;
  FaultyDriver& operator=(const FaultyDriver&) = delete;
};

/// From here on, whether GL was ever told to finish something: a glFinish counts in a context
/// and when something was told since the last glFlush. Mesa's zink waits for nothing in any other.
void WatchFinishes();
bool SomethingWasFinished();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PLATFORM_FAULTY_DRIVER_H_
