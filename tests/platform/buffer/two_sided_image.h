// SPDX-License-Identifier: Apache-2.0
// An image whose two sides are numbers, to see who reads an old picture.
#ifndef LUMORA_TESTS_PLATFORM_TWO_SIDED_IMAGE_H_
#define LUMORA_TESTS_PLATFORM_TWO_SIDED_IMAGE_H_

#include "lumora/platform/buffer/coherence.h"

namespace lumora::test {

/// Its content is one number; equal numbers are equal pictures.
struct TwoSidedImage final : platform::CoherentMemory {
  bool Reachable() override { return reachable; }
  bool BeginAccess() override { return reachable; }
  bool Publish(const PixelRectangle&) override {
    if (!reachable) return false;
    ++published;
    gpu = cpu;
    return true;
  }
  bool Fetch(const PixelRectangle&) override {
    if (!reachable) return false;
    ++fetched;
    cpu = gpu;
    return true;
  }
  bool PublishFrom(const platform::CpuImage&, const PixelRectangle&) override { return false; }
  bool FetchInto(const platform::CpuImage&, const PixelRectangle&) override { return false; }
  void CopyInto(const platform::CpuImage&, const PixelRectangle&) override {}
  void RememberCpu(const PixelRectangle&) override { remembered = cpu; }
  bool CpuChanged() override { return cpu != remembered; }

  // The events, for the whole image.
  bool Lock() { return coherence.Write(coherence.whole()); }
  bool Overwrite() { return coherence.Overwrite(coherence.whole()); }
  bool Unlock() { return coherence.Released(coherence.whole()); }

  static constexpr PixelRectangle kWhole{0, 0, 4, 2};

  int cpu = 0;
  int gpu = 0;
  int remembered = -1;
  int published = 0;
  int fetched = 0;
  bool reachable = true;  ///< false: the image's context is not current
  platform::Coherence coherence{*this, kWhole};
  int truth = 0;  ///< content in an always-coherent memory
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PLATFORM_TWO_SIDED_IMAGE_H_
