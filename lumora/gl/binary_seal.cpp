// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/binary_seal.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "lumora/platform/byte_digest.h"
#include "lumora/platform/driver_digest.h"

namespace lumora {

BinarySeal SealOf(ByteSpan head, ByteSpan body, const ShaderTexts* texts) {
  platform::ByteDigest binary;
  platform::AddLibraryAndDriver(&binary);
  binary.Add(head.data, head.size);
  binary.Add(body.data, body.size);
  BinarySeal seal = {};
  int length = std::snprintf(seal.text, sizeof(seal.text),
                             "Lumora program seal 1\nbinary %016" PRIx64 "\n", binary.Value());
  if (texts != nullptr) {
    platform::ByteDigest source;
    source.AddText(texts->vertex);
    source.AddText(texts->fragment);
    length += std::snprintf(seal.text + length, sizeof(seal.text) - static_cast<size_t>(length),
                            "texts %016" PRIx64 "\n", source.Value());
  }
  seal.size = static_cast<size_t>(length);
  return seal;
}

bool IsVouchedFor(const FileBytes& file, const ShaderTexts* texts) {
  const BinarySeal right = SealOf({file.data.get(), file.size}, {nullptr, 0}, texts);
  const bool fits = texts != nullptr ? file.seal_size == right.size : file.seal_size >= right.size;
  return fits && std::memcmp(file.seal, right.text, right.size) == 0;
}

}  // namespace lumora
