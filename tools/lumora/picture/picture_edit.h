// SPDX-License-Identifier: Apache-2.0
// One picture file on its way to another: what the commands that change pictures have in common.
#ifndef LUMORA_TOOLS_PICTURE_PICTURE_EDIT_H_
#define LUMORA_TOOLS_PICTURE_PICTURE_EDIT_H_

#include <string>
#include <vector>

#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/picture_file.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// Everything that can be known to be wrong with the names of results before an input is read:
/// unknown endings, one file twice or also an input, places that cannot be written, a terminal.
/// Empty names are skipped. `report` says that standard output is needed for a report. Throws
/// Failure.
void CheckPictureOutputs(const std::vector<std::string>& inputs,
                         const std::vector<std::string>& results, bool report);

class PictureEdit {
 public:
  /// Reads the picture. Throws Failure (Unreadable).
  PictureEdit(const std::string& path, const Appetite& appetite);

  Picture& picture() { return *file_.loaded.picture; }
  const Picture& picture() const { return *file_.loaded.picture; }

  /// Sentences for the user.
  void Note(const std::string& note) { file_.loaded.notes.push_back(note); }
  const Notes& notes() const { return file_.loaded.notes; }
  /// Says all notes on standard error.
  void TellNotes() const;

  /// Takes over what has changed between the two frames.
  void Merge(const Frame420& before, const Frame420& after);

  /// The format of a result; for standard output, that of the input.
  FileFormat FormatFor(const std::string& path) const;

  /// The picture with the input's metadata, in the format for that path. A picture that nothing was
  /// merged into is the input's own bytes where the format allows it.
  Bytes Encode(const std::string& path);

 private:
  std::string path_;
  PictureFile file_;
  bool changed_ = false;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PICTURE_EDIT_H_
