// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/picture_edit.h"

#include <unistd.h>

#include "tools/lumora/picture/losses.h"
#include "tools/lumora/picture/metadata.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/places.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {

void CheckPictureOutputs(const std::vector<std::string>& inputs,
                         const std::vector<std::string>& results, bool report) {
  for (const std::string& path : results) {
    if (path.empty()) continue;
    if (path == kStandardStream) {
      if (report) throw Failure(ExitCode::Usage, "--json needs standard output for itself");
      if (isatty(STDOUT_FILENO) != 0) {
        throw Failure(ExitCode::Usage, "a picture cannot be shown on a terminal; redirect it");
      }
    } else {
      FormatOfName(path);
    }
  }
  std::vector<std::string> written = results;
  if (report) written.emplace_back(kStandardStream);
  CheckPlacesDiffer(inputs, written);
  for (const std::string& path : results) {
    if (!path.empty()) CheckWritable(path);
  }
}

PictureEdit::PictureEdit(const std::string& path, const Appetite& appetite)
    : path_(path), file_(ReadPicture(path, appetite)) {}

void PictureEdit::TellNotes() const {
  for (const std::string& note : notes()) Complain(path_ + ": " + note);
}

void PictureEdit::Merge(const Frame420& before, const Frame420& after) {
  picture().Merge(before, after);
  changed_ = true;
}

FileFormat PictureEdit::FormatFor(const std::string& path) const {
  return path == kStandardStream ? file_.loaded.format : FormatOfName(path);
}

Bytes PictureEdit::Encode(const std::string& path) {
  const FileFormat format = FormatFor(path);
  const bool as_it_was =
      !changed_ && format == file_.loaded.format && file_.loaded.orientation == 1;
  if (as_it_was) return file_.content;
  for (const std::string& loss : LossesOf(file_.content, picture(), format == FileFormat::Png)) {
    Note(loss);
  }
  Bytes result = picture().Encode(format);
  const std::string problem =
      CopyMetadata(file_.loaded.metadata, file_.content, picture().size(), result);
  if (!problem.empty()) Note(problem);
  return result;
}

}  // namespace lumora::tools
