// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/picture_file.h"

namespace lumora::tools {
namespace {

/// Whether the bytes told the size, which was then found acceptable.
bool SizeIsAcceptable(const Bytes& bytes, const std::string& name, const Appetite& appetite) {
  const Size size = StatedSize(bytes, name);
  if (size.empty()) return false;
  appetite.Check(size, name);
  return true;
}

}  // namespace

PictureFile ReadPicture(const std::string& path, const Appetite& appetite) {
  WholeInput input(path);
  const bool checked = SizeIsAcceptable(input.start(), input.name(), appetite);
  PictureFile file{input.Rest(kLargestFile), {}};
  if (!checked) SizeIsAcceptable(file.content, input.name(), appetite);
  file.loaded = DecodePicture(file.content, input.name());
  return file;
}

}  // namespace lumora::tools
