// SPDX-License-Identifier: Apache-2.0
#include "tests/tools/stored_pictures.h"

#include <algorithm>

namespace lumora::test {

cv::Mat Stored(const cv::Mat& upright, int orientation) {
  struct Sides {
    bool rows_run_across;  // stored rows are columns of the picture
    bool first_row_last;   // the first row is the bottom (or right) side
    bool first_column_last;
  };
  constexpr Sides kSides[] = {{false, false, false}, {false, false, true}, {false, true, true},
                              {false, true, false},  {true, false, false}, {true, true, false},
                              {true, true, true},    {true, false, true}};
  const Sides& sides = kSides[orientation - 1];
  const int rows = sides.rows_run_across ? upright.cols : upright.rows;
  const int columns = sides.rows_run_across ? upright.rows : upright.cols;
  cv::Mat stored(rows, columns, upright.type());
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const int along_row = sides.first_row_last ? rows - 1 - row : row;
      const int along_column = sides.first_column_last ? columns - 1 - column : column;
      const uint8_t* const from = sides.rows_run_across ? upright.ptr(along_column, along_row)
                                                        : upright.ptr(along_row, along_column);
      std::copy_n(from, upright.elemSize(), stored.ptr(row, column));
    }
  }
  return stored;
}

Bytes WithMetadata(const Bytes& file, const std::function<void(Exiv2::Image&)>& change) {
  const auto image = Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size()));
  image->readMetadata();
  change(*image);
  image->writeMetadata();
  Exiv2::BasicIo& io = image->io();
  io.open();
  const Exiv2::DataBuf written = io.read(static_cast<long>(io.size()));
  return Bytes(written.pData_, written.pData_ + written.size_);
}

Bytes WithOrientation(const Bytes& file, int orientation) {
  return WithMetadata(file, [orientation](Exiv2::Image& image) {
    image.exifData()["Exif.Image.Orientation"] = static_cast<uint16_t>(orientation);
  });
}

}  // namespace lumora::test
