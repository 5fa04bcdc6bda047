// SPDX-License-Identifier: Apache-2.0
// Memory that runs out while a process finds out, once, what there is to draw with. Every request
// is refused in a process of its own, which begins before this one has anything to do with GL.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/segl_image.h"
#include "proofs/faults/allocation_faults.h"

namespace lumora::test {
namespace {

// A context, and an image written through and read back.
bool ExchangesBytes() {
  android::GPUBeautyFace engine;
  SEGLImage image(1);
  if (image.Create(64, 4, 1) != 1) return false;
  unsigned char* const pixels = image.Lock();
  bool same = pixels != nullptr;
  if (same) {
    std::memset(pixels, 0x5A, 64 * 4);
    image.Unlock();
    same = image.Lock()[255] == 0x5A;
  }
  image.Destroy();
  return same;
}

// How many requests a first use makes; -1 where it throws or what follows does not work.
int RequestsInAnotherProcess(const Refusal& refusal) {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const Requests requests = WithRefusal(refusal, [] { ExchangesBytes(); });
    const bool works = !requests.thrown && ExchangesBytes();
    const bool sent = write(ends[1], &requests.made, sizeof(int)) == sizeof(int);
    _exit(works && sent ? 0 : 1);
  }
  close(ends[1]);
  int made = -1;
  const bool received = child > 0 && read(ends[0], &made, sizeof(made)) == sizeof(made);
  close(ends[0]);
  int status = -1;
  waitpid(child, &status, 0);
  return received && status == 0 ? made : -1;
}

TEST(FirstAllocations, AreGotRound) {
  const int requests = RequestsInAnotherProcess({});
  ASSERT_GE(requests, 4);
  for (int number = 1; number <= requests; ++number) {
    EXPECT_GE(RequestsInAnotherProcess({number, Shortage::Once}), number);
  }
  testing::Test::RecordProperty("requests", requests);
}

}  // namespace
}  // namespace lumora::test
