// SPDX-License-Identifier: Apache-2.0
// Engines on the measuring thread, beside bare contexts.
#ifndef LUMORA_BENCH_ENGINES_H_
#define LUMORA_BENCH_ENGINES_H_

#include <cstdint>

#include "bench/paired.h"
#include "bench/scene.h"
#include "lumora/engine/gpu_beauty_face.h"

namespace lumora::bench {

/// An engine that shares its thread with other contexts: whoever uses it makes it current first.
class BenchEngine {
 public:
  BenchEngine();
  ~BenchEngine();
  BenchEngine(const BenchEngine&) = delete;
  BenchEngine& operator=(const BenchEngine&) = delete;

  void MakeCurrent();
  android::GPUBeautyFace* operator->() { return &engine_; }

  /// The slimming of one frame, in place.
  void Slim(uint8_t* frame, Size size, const FACE_INFO_t& face);
  /// The whitening of one frame in colour-convert mode.
  void Whiten(uint8_t* frame, uint8_t* result, Size size, FACE_INFO_t face);

  void InitPreview(Size size, bool colour);

  /// The filters that the pipeline chooses for slimming, whatever the frames before did.
  void SetLinearFilters();

 private:
  android::GPUBeautyFace engine_;
};

/// What whitening is asked for: levels of the engine's calls.
constexpr int kIntensityLevel = 40;
constexpr int kSaturationLevel = 20;

/// Chooses between the engine's full quads and its own choice of what to draw, from the next frame
/// on.
void SetFullQuads(bool full);

/// Processor time where the renderer is software that works on the calling thread, else wall time.
Clock RendererClock();

/// The number of threads that Mesa's software renderer works with, for displays that are opened
/// from now on: 0 is the calling thread alone.
void SetRendererThreads(int threads);

/// Warm-up of a chain: shader variants, and the filters that settle only after the second frame.
constexpr int kWarmFrames = 3;

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_ENGINES_H_
