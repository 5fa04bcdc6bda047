// SPDX-License-Identifier: Apache-2.0
// The ways that a frame can take.
#ifndef LUMORA_PIPELINE_CHAIN_H_
#define LUMORA_PIPELINE_CHAIN_H_

#include "lumora/pipeline/export.h"

namespace lumora {

/// Which of two ways a frame is to take. The look is the same either way.
enum class Chain {
  Auto,     ///< preview up to a width of 1280 pixels, capture above
  Preview,  ///< the whole frame at once; sides are limited by the driver's textures, on gl
  Capture,  ///< only the blocks around faces, for stills of any size
};

/// Which way a call has taken.
enum class ChainUsed {
  NoCall,   ///< none yet, or the call failed
  None,     ///< there was nothing to do; the frame was copied on the calling thread
  Preview,  ///< the whole frame at once; rectification as well
  Capture,  ///< block by block
  Convert,  ///< the converter's
};

/// "none", "preview", "capture" or "convert"; an empty text for NoCall and for what is no
/// ChainUsed. Thread-safety: any thread. Ownership: the text stays for ever. Failure: none.
LUMORA_PIPELINE_API const char* Name(ChainUsed chain);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_CHAIN_H_
