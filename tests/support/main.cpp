// SPDX-License-Identifier: Apache-2.0
// The entry point of test executables that bring none of their own.
#include <gmock/gmock.h>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
