// SPDX-License-Identifier: Apache-2.0
// Whether a machine can have a GPU, told from its nodes.
#include "pipeline/backends/gpu_nodes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

/// A folder that stands for the root of a machine.
class GpuNodes : public testing::Test {
 protected:
  GpuNodes() {
    std::string name = (fs::temp_directory_path() / "gpu-nodes-XXXXXX").string();
    root_ = mkdtemp(name.data());
  }
  ~GpuNodes() override { fs::remove_all(root_); }

  /// Whether a machine with that node alone can have a GPU.
  bool HasWith(const std::string& node) {
    fs::remove_all(root_ / "dev");
    const fs::path place = root_ / "dev" / node;
    fs::create_directories(place.parent_path());
    std::ofstream(place).put('\n');
    return HasGpuNode(root_.string());
  }

  fs::path root_;
};

TEST_F(GpuNodes, OfEveryDriverAreKnown) {
  for (const char* const node :
       {"dri/card0", "dri/card12", "dri/renderD128", "dri/renderD131", "nvidia0", "nvidia7",
        "nvhost-gpu", "mali0", "kgsl-3d0", "pvrsrvkm", "pvr_sync", "galcore", "galcore0", "dxg"}) {
    EXPECT_TRUE(HasWith(node)) << node;
  }
}

TEST_F(GpuNodes, AreNotSeenInOthers) {
  for (const char* const node : {"null", "dri/by-path", "dri/control", "nvidiactl", "nvidia-uvm",
                                 "nvidia-caps", "nvme0", "video0", "fb0", "card0", "render"}) {
    EXPECT_FALSE(HasWith(node)) << node;
  }
}

TEST_F(GpuNodes, AreNotThereWhereNothingIs) {
  EXPECT_FALSE(HasGpuNode(root_.string()));
  EXPECT_FALSE(HasGpuNode((root_ / "none").string()));
  fs::create_directories(root_ / "dev/dri");
  EXPECT_FALSE(HasGpuNode(root_.string()));
}

TEST_F(GpuNodes, MayBeThereWhereNobodyMayLook) {
  fs::create_directories(root_ / "dev");
  chmod((root_ / "dev").c_str(), 0);
  if (geteuid() == 0) GTEST_SKIP() << "root may look everywhere";
  EXPECT_TRUE(HasGpuNode(root_.string()));
  chmod((root_ / "dev").c_str(), 0700);
}

}  // namespace
}  // namespace lumora::test
