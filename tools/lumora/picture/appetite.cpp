// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/appetite.h"

#include "tools/lumora/support/memory.h"

namespace lumora::tools {

void Appetite::Check(Size picture, const std::string& name) const {
  if (force) return;
  CheckMemory(static_cast<uint64_t>(picture.width) * static_cast<uint64_t>(picture.height) *
                  static_cast<uint64_t>(bytes_a_pixel),
              name);
}

}  // namespace lumora::tools
