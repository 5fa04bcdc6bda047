// SPDX-License-Identifier: Apache-2.0
// The files that name a camera's sensor and tell its lens coefficients.
#include <algorithm>
#include <iterator>
#include <string>

#include "fuzz/support/files.h"
#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "lumora/engine/internal/lens_files.h"
#include "lumora/geometry/lens.h"
#include "lumora/platform/settings.h"

namespace {

using lumora::fuzz::Input;
using lumora::fuzz::Require;
using lumora::fuzz::ScratchFolder;
using Bytes = std::vector<uint8_t>;

/// A system root with the folders of both kinds of files.
class SystemRoot {
 public:
  SystemRoot() {
    for (const char* name : {"sys/android_camera", "sys/android_camera2", "system/etc"}) {
      folder_.make_folder(name);
    }
    lumora::platform::SetSystemRoot(folder_.path());
  }
  void write(const std::string& name, const Bytes& content) { folder_.write(name, content); }

 private:
  ScratchFolder folder_;
};

/// The part of a file that counts: its first 100 bytes, up to a zero byte.
std::string Text(const Bytes& file) {
  const Bytes first(file.begin(),
                    file.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(100, file.size())));
  return {first.begin(), std::find(first.begin(), first.end(), uint8_t{0})};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static SystemRoot root;
  Input input(data, size);
  const bool second = input.flag();
  const Bytes sensor = input.block();
  const Bytes parameters = input.rest();
  root.write(second ? "sys/android_camera2/sensor" : "sys/android_camera/sensor", sensor);
  root.write("system/etc/lens_1", parameters);

  const auto k = lumora::engine::ReadLensCoefficients(second);
  const bool changed =
      !std::equal(k.begin(), k.end(), std::begin(lumora::kDefaultLensCoefficients));
  const bool named = Text(sensor).find("lens") != std::string::npos;
  const bool keyed = Text(parameters).find("r_param") != std::string::npos;
  Require(!changed || (named && keyed), "coefficients come from the sensor's own file");
  return 0;
}
