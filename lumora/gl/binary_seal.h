// SPDX-License-Identifier: Apache-2.0
// What vouches for a program binary on disk.
//
// A driver takes its binaries on trust: damaged ones have aborted processes, and one that was made
// from another text is taken as if it were right. So each cache file has a seal, made when the file
// was: a digest of every byte of it, of this library's version and of the driver, and one of the
// shader texts. Only a file whose seal is the one that would be made for it now, by this library
// for this driver, is shown to the driver.
#ifndef LUMORA_GL_BINARY_SEAL_H_
#define LUMORA_GL_BINARY_SEAL_H_

#include <cstddef>

#include "lumora/gl/cache_file.h"

namespace lumora {

/// The texts that a program is compiled from.
struct ShaderTexts {
  const char* vertex;
  const char* fragment;
};

/// A seal as it is written: lines of text.
struct BinarySeal {
  char text[kMaxSealSize];
  size_t size;
};

/// The seal of a file that holds `head` and then `body`, made by the current context's driver.
/// Where `texts` is null, nobody knows what it was compiled from, and the seal says nothing of it.
BinarySeal SealOf(ByteSpan head, ByteSpan body, const ShaderTexts* texts);

/// Whether a file that was read is whole, of this library and the current context's driver and,
/// unless `texts` is null, compiled from these texts.
bool IsVouchedFor(const FileBytes& file, const ShaderTexts* texts);

}  // namespace lumora

#endif  // LUMORA_GL_BINARY_SEAL_H_
