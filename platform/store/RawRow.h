// Values of rows as the file holds them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Schema.h"

namespace store {

/// What a cell holds in the file, whatever the type of its column is.
enum class Cell { Null, Whole, Real, Text, Binary };

/// Values of one row as the file holds them; each is decoded when it is asked for.
class RawRow {
 public:
  /// Makes room for a row of so many cells; each has to be put.
  void Start(int count) {
    cells_.resize(static_cast<std::size_t>(count));
    bytes_.clear();
  }
  void PutNull(int cell) { At(cell).kind = Cell::Null; }
  void PutWhole(int cell, std::int64_t value) {
    At(cell).kind = Cell::Whole;
    At(cell).whole = value;
  }
  void PutReal(int cell, double value) {
    At(cell).kind = Cell::Real;
    At(cell).real = value;
  }
  /// Copies a text or a binary.
  void PutBytes(int cell, Cell kind, const char* bytes, std::size_t length) {
    Content& content = At(cell);
    content.kind = kind;
    content.offset = bytes_.size();
    content.length = static_cast<std::uint32_t>(length);
    if (length > 0) bytes_.append(bytes, length);
  }

  /// The value of a cell of a column of this type. What another program stored in the wrong form comes back
  /// as it is.
  rt::Value Decode(int cell, ColumnType type) const;
  bool Empty() const { return cells_.empty(); }
  void Clear() {
    cells_.clear();
    bytes_.clear();
  }

 private:
  struct Content {
    Cell kind = Cell::Null;
    std::uint32_t length = 0;
    union {
      std::int64_t whole = 0;
      double real;
      std::size_t offset;
    };
  };
  Content& At(int cell) { return cells_[static_cast<std::size_t>(cell)]; }

  std::vector<Content> cells_;
  std::string bytes_;
};

}  // namespace store
