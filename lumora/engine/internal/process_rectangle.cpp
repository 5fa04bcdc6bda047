// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/process_rectangle.h"

#include "lumora/geometry/blocks.h"
#include "lumora/gl/log.h"

LUMORA_LOG_TAG("Lumora");

namespace lumora::engine {

int FacesWithBlocks(const char* function, int faces) {
  if (faces <= kMaxFaceRecords) return faces;
  LOGE("[%s] %d faces, only %d are processed", function, faces, kMaxFaceRecords);
  return kMaxFaceRecords;
}

}  // namespace lumora::engine
