// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_planes.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/lumora/picture/jpeg_codec.h"

namespace lumora::tools {
namespace {

/// A plane's samples in whole rows of blocks, with pointers to its rows as libjpeg takes them.
struct BlockRows {
  BlockRows(const jpeg_component_info& component, unsigned row_groups)
      : rows_a_group(component.v_samp_factor * DCTSIZE),
        samples({static_cast<int>(component.width_in_blocks + 3) * DCTSIZE,
                 static_cast<int>(row_groups) * rows_a_group}) {
    for (int y = 0; y < samples.height(); ++y) rows.push_back(samples.Row(y));
  }

  int rows_a_group;
  Image samples;
  std::vector<JSAMPROW> rows;
};

struct AllRows {
  AllRows(const jpeg_component_info* components, int count, unsigned height, int most_down) {
    groups = (height + static_cast<unsigned>(most_down * DCTSIZE) - 1) /
             static_cast<unsigned>(most_down * DCTSIZE);
    for (int i = 0; i < count; ++i) planes.emplace_back(components[i], groups);
  }

  /// Points `arrays` at the rows of one group.
  void Group(unsigned group, JSAMPARRAY (&arrays)[MAX_COMPONENTS]) {
    for (size_t i = 0; i < planes.size(); ++i) {
      arrays[i] = &planes[i].rows[group * static_cast<unsigned>(planes[i].rows_a_group)];
    }
  }

  unsigned groups;
  std::vector<BlockRows> planes;
};

int DivideUp(unsigned value, int by) {
  return (static_cast<int>(value) + by - 1) / by;
}

bool IsPlanar(const jpeg_decompress_struct& info) {
  const jpeg_component_info* c = info.comp_info;
  if (info.num_components == 1) return info.jpeg_color_space == JCS_GRAYSCALE;
  return info.num_components == 3 && info.jpeg_color_space == JCS_YCbCr &&
         c[0].h_samp_factor == info.max_h_samp_factor &&
         c[0].v_samp_factor == info.max_v_samp_factor && c[1].h_samp_factor == c[2].h_samp_factor &&
         c[1].v_samp_factor == c[2].v_samp_factor && c[0].h_samp_factor % c[1].h_samp_factor == 0 &&
         c[0].v_samp_factor % c[1].v_samp_factor == 0;
}

void Transpose(jpeg_compress_struct& info) {
  std::swap(info.image_width, info.image_height);
  for (int i = 0; i < info.num_components; ++i) {
    std::swap(info.comp_info[i].h_samp_factor, info.comp_info[i].v_samp_factor);
  }
  for (JQUANT_TBL* table : info.quant_tbl_ptrs) {
    if (table == nullptr) continue;
    for (int row = 0; row < DCTSIZE; ++row) {
      for (int column = 0; column < row; ++column) {
        std::swap(table->quantval[row * DCTSIZE + column], table->quantval[column * DCTSIZE + row]);
      }
    }
  }
}

/// libjpeg computes these only inside jpeg_start_compress, and the rows are needed before it.
void FillBlockCounts(jpeg_compress_struct& info) {
  int most_across = 1, most_down = 1;
  for (int i = 0; i < info.num_components; ++i) {
    most_across = std::max(most_across, info.comp_info[i].h_samp_factor);
    most_down = std::max(most_down, info.comp_info[i].v_samp_factor);
  }
  info.max_v_samp_factor = most_down;
  for (int i = 0; i < info.num_components; ++i) {
    jpeg_component_info& component = info.comp_info[i];
    component.width_in_blocks = static_cast<JDIMENSION>(DivideUp(
        info.image_width * static_cast<unsigned>(component.h_samp_factor), most_across * DCTSIZE));
  }
}

/// A row of a plane's blocks, to be read or also written.
JBLOCKARRAY BlocksOf(JpegDecoder& decoder, jvirt_barray_ptr plane, JDIMENSION row, boolean write) {
  JBLOCKARRAY blocks = nullptr;
  decoder.Guard([&] {
    blocks = decoder.info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&decoder.info),
                                                  plane, row, 1, write);
  });
  return blocks;
}

/// Whether a sample of the block is not zero.
bool HasMark(const Image& marks, int left, int top) {
  const int right = std::min(left + DCTSIZE, marks.width());
  const int bottom = std::min(top + DCTSIZE, marks.height());
  for (int y = top; y < bottom; ++y) {
    const uint8_t* const row = marks.Row(y);
    if (std::any_of(row + left, row + right, [](uint8_t mark) { return mark != 0; })) return true;
  }
  return false;
}

}  // namespace

JpegLayout ReadJpegLayout(const Bytes& file) {
  JpegDecoder decoder(file);
  const jpeg_decompress_struct& info = decoder.info;
  JpegLayout layout;
  layout.size = {static_cast<int>(info.image_width), static_cast<int>(info.image_height)};
  layout.planar = IsPlanar(info);
  for (int i = 0; layout.planar && i < info.num_components; ++i) {
    layout.areas.push_back({info.max_h_samp_factor / info.comp_info[i].h_samp_factor,
                            info.max_v_samp_factor / info.comp_info[i].v_samp_factor});
  }
  return layout;
}

std::vector<Image> ReadJpegPlanes(const Bytes& file) {
  JpegDecoder decoder(file);
  jpeg_decompress_struct& info = decoder.info;
  info.raw_data_out = TRUE;
  info.dct_method = JDCT_ISLOW;
  decoder.Guard([&] { jpeg_start_decompress(&info); });
  AllRows rows(info.comp_info, info.num_components, info.image_height, info.max_v_samp_factor);
  JSAMPARRAY arrays[MAX_COMPONENTS] = {};
  for (unsigned group = 0; group < rows.groups; ++group) {
    rows.Group(group, arrays);
    decoder.Guard([&] {
      jpeg_read_raw_data(&info, arrays, static_cast<JDIMENSION>(info.max_v_samp_factor * DCTSIZE));
    });
  }
  std::vector<Image> planes;
  for (int i = 0; i < info.num_components; ++i) {
    const jpeg_component_info& component = info.comp_info[i];
    planes.push_back(Fitted(std::move(rows.planes[static_cast<size_t>(i)].samples),
                            {static_cast<int>(component.downsampled_width),
                             static_cast<int>(component.downsampled_height)}));
  }
  // Frees the component table, so it comes last. It also finds out when the file ends too early.
  decoder.Guard([&] { jpeg_finish_decompress(&info); });
  return planes;
}

Bytes WriteJpegPlanes(const std::vector<Image>& planes, const Bytes& like, bool transposed) {
  JpegDecoder model(like);
  JpegEncoder encoder;
  encoder.CopySettings(model);
  jpeg_compress_struct& info = encoder.info;
  if (transposed) Transpose(info);
  info.raw_data_in = TRUE;
  info.dct_method = JDCT_ISLOW;
  FillBlockCounts(info);
  AllRows rows(info.comp_info, info.num_components, info.image_height, info.max_v_samp_factor);
  for (size_t i = 0; i < planes.size(); ++i) {
    Bytes& samples = rows.planes[i].samples.bytes();
    const Image extended = Fitted(planes[i], rows.planes[i].samples.size());
    std::copy(extended.bytes().begin(), extended.bytes().end(), samples.begin());
  }
  encoder.Guard([&] { jpeg_start_compress(&info, TRUE); });
  JSAMPARRAY arrays[MAX_COMPONENTS] = {};
  for (unsigned group = 0; group < rows.groups; ++group) {
    rows.Group(group, arrays);
    encoder.Guard([&] {
      jpeg_write_raw_data(&info, arrays, static_cast<JDIMENSION>(info.max_v_samp_factor * DCTSIZE));
    });
  }
  encoder.Guard([&] { jpeg_finish_compress(&info); });
  return encoder.File();
}

Bytes ReplaceJpegBlocks(const Bytes& original, const Bytes& recoded,
                        const std::vector<Image>& changed) {
  JpegDecoder source(original), donor(recoded);
  jvirt_barray_ptr* kept = nullptr;
  jvirt_barray_ptr* given = nullptr;
  source.Guard([&] { kept = jpeg_read_coefficients(&source.info); });
  donor.Guard([&] { given = jpeg_read_coefficients(&donor.info); });
  for (size_t i = 0; i < changed.size(); ++i) {
    const jpeg_component_info& component = source.info.comp_info[i];
    for (JDIMENSION row = 0; row < component.height_in_blocks; ++row) {
      JBLOCKARRAY const to = BlocksOf(source, kept[i], row, TRUE);
      JBLOCKARRAY const from = BlocksOf(donor, given[i], row, FALSE);
      for (JDIMENSION column = 0; column < component.width_in_blocks; ++column) {
        if (HasMark(changed[i], static_cast<int>(column) * DCTSIZE,
                    static_cast<int>(row) * DCTSIZE)) {
          std::memcpy(to[0][column], from[0][column], sizeof(JBLOCK));
        }
      }
    }
  }
  JpegEncoder encoder;
  encoder.CopySettings(source);
  encoder.Guard([&] {
    jpeg_write_coefficients(&encoder.info, kept);
    jpeg_finish_compress(&encoder.info);
  });
  source.Guard([&] { jpeg_finish_decompress(&source.info); });
  return encoder.File();
}

}  // namespace lumora::tools
