// Rows without compression, and pictures that are in memory as a whole.
#include "qnvtool/output/row_encoder.h"

#include <algorithm>
#include <utility>

#include "qnvtool/base/ordered_tasks.h"
#include "qnvtool/base/phase_times.h"

namespace qnv::tool {
namespace {

class PlainEncoder final : public RowEncoder {
 public:
  using RowEncoder::RowEncoder;

  int unit() const override { return 1; }
  int rowsAbove() const override { return 0; }

  EncodedRows Encode(const PictureRowsView& view) const override {
    EncodedRows result;
    std::vector<uint8_t>& bytes = result.emplace_back().bytes;
    bytes.reserve(FileRowSize(form_) * static_cast<std::size_t>(view.rows));
    std::vector<uint8_t> converted;
    for (int row = 0; row < view.rows; ++row) {
      ConvertRow(form_, view.Row(row), converted);
      bytes.insert(bytes.end(), converted.begin(), converted.end());
    }
    return result;
  }
};

}  // namespace

std::unique_ptr<RowEncoder> CreatePlainEncoder(const PictureForm& form) { return std::make_unique<PlainEncoder>(form); }

void WritePicture(Workers& workers, const RowEncoder& encoder, const uint8_t* first, std::size_t stride,
                  PictureWriter& file) {
  OrderedTasks<EncodedRows> tasks(workers, 2 * workers.count(), [&](const EncodedRows& rows) { file.Write(rows); });
  const PictureRowsView picture{first, stride, 0, encoder.form().height};
  const int unit = std::max(encoder.unit(), 64);
  for (int top = 0; top < picture.rows; top += unit) {
    const PictureRowsView view{picture.Row(top), stride, top, std::min(unit, picture.rows - top)};
    tasks.Start([&encoder, view] {
      const PhaseTimer timer(Phase::kEncoding);
      return encoder.Encode(view);
    });
  }
  tasks.Finish();
  file.Finish();
}

void WritePnmFile(const std::string& path, const PictureForm& form, const uint8_t* first, std::size_t stride) {
  Workers alone(1);
  WritePicture(alone, *CreatePlainEncoder(form), first, stride, *CreatePnmFile(path, form));
}

}  // namespace qnv::tool
