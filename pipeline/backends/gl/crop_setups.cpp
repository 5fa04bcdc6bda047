// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/crop_setups.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lumora {

Status CropSetups::Find(int width, int height, int64_t most_pixels, EngineSetup** setup) {
  const auto found = std::find_if(engines_.begin(), engines_.end(), [&](const auto& engine) {
    return engine->width() == width && engine->height() == height;
  });
  if (found != engines_.end()) {
    std::rotate(found, std::next(found), engines_.end());
    *setup = engines_.back().get();
    return (*setup)->Preview(width, height, true);
  }
  const auto pixels = [&] {
    int64_t sum = int64_t{width} * height;
    for (const auto& engine : engines_) sum += int64_t{engine->width()} * engine->height();
    return sum;
  };
  std::unique_ptr<EngineSetup> engine;
  while (!engines_.empty() && (engines_.size() >= kMost || pixels() > most_pixels)) {
    engine = std::move(engines_.front());
    engines_.erase(engines_.begin());
  }
  engines_.reserve(kMost);  // before the engine's context is the thread's: nothing may throw then
  if (engine == nullptr) engine = std::make_unique<EngineSetup>();
  ++made_;
  if (Status status = engine->Preview(width, height, true); !status.ok()) return status;
  engines_.push_back(std::move(engine));
  *setup = engines_.back().get();
  return {};
}

}  // namespace lumora
