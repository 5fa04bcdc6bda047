#include "tools/lumora/picture/appetite.h"

#include "tools/lumora/support/memory.h"

namespace lumora::tools {

void Appetite::AddTo(CLI::App& command) {
  command.add_flag("--force", force,
                   "also take an input that needs more than half of this machine's memory");
}

void Appetite::Check(cv::Size picture, const std::string& name) const {
  if (force) return;
  CheckMemory(static_cast<uint64_t>(picture.width) * static_cast<uint64_t>(picture.height) *
                  static_cast<uint64_t>(bytes_a_pixel),
              name);
}

}  // namespace lumora::tools
