#include "platform/print/output/PdfFile.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <new>

#include "platform/print/output/PageTexts.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

/// The fastest level: the third one makes files 6 % smaller and takes a third more time.
constexpr int kLevel = 1;

std::string Hex(std::uint32_t number) {
  std::array<char, 9> digits{};
  std::snprintf(digits.data(), digits.size(), "%04X", number);
  return digits.data();
}

}  // namespace

void PdfFile::CompressorEnd::operator()(libdeflate_compressor* compressor) const {
  libdeflate_free_compressor(compressor);
}

PdfFile::PdfFile(OutputFile& file)
    : file_(file), places_(1), compressor_(libdeflate_alloc_compressor(kLevel)) {
  if (compressor_ == nullptr) throw std::bad_alloc();
  // The second line tells programs that transfer files that this one is not plain text.
  file_.Write("%PDF-1.7\n%\xE2\xE3\xCF\xD3\n");
}

PdfFile::~PdfFile() = default;

int PdfFile::Reserve() {
  places_.push_back(0);
  return static_cast<int>(places_.size()) - 1;
}

void PdfFile::Begin(int number) {
  places_[static_cast<std::size_t>(number)] = file_.Position();
  file_.Write(std::to_string(number) + " 0 obj\n");
}

void PdfFile::Object(int number, std::string_view body) {
  Begin(number);
  file_.Write(body);
  file_.Write("\nendobj\n");
}

void PdfFile::Stream(int number, std::string_view entries, std::string_view content) {
  packed_.resize(libdeflate_zlib_compress_bound(compressor_.get(), content.size()));
  const std::size_t size = libdeflate_zlib_compress(compressor_.get(), content.data(), content.size(),
                                                    packed_.data(), packed_.size());
  Begin(number);
  file_.Write("<</Length " + std::to_string(size) + "/Filter/FlateDecode");
  file_.Write(entries);
  file_.Write(">>stream\n");
  file_.Write({packed_.data(), size});
  file_.Write("\nendstream\nendobj\n");
}

void PdfFile::Finish(int catalog, int info) {
  const std::uint64_t table = file_.Position();
  file_.Write("xref\n0 " + std::to_string(places_.size()) + "\n0000000000 65535 f \n");
  std::array<char, 32> line{};
  for (std::size_t i = 1; i < places_.size(); ++i) {
    const int length = std::snprintf(line.data(), line.size(), "%010llu 00000 n \n",
                                     static_cast<unsigned long long>(places_[i]));
    file_.Write({line.data(), static_cast<std::size_t>(length)});
  }
  file_.Write("trailer\n<</Size " + std::to_string(places_.size()) + "/Root " + PdfReference(catalog) +
              "/Info " + PdfReference(info) + ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n");
}

void AppendPoints(std::string& out, std::int64_t hundredths) {
  if (hundredths < 0) {
    out.push_back('-');
    hundredths = -hundredths;
  }
  std::array<char, 24> digits{};
  const std::int64_t whole = hundredths / 100;
  const auto rest = static_cast<int>(hundredths % 100);
  if (whole != 0 || rest == 0) {
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), whole).ptr;
    out.append(digits.data(), end);
  }
  if (rest == 0) return;
  out.push_back('.');
  out.push_back(static_cast<char>('0' + rest / 10));
  if (rest % 10 != 0) out.push_back(static_cast<char>('0' + rest % 10));
}

std::string PdfReference(int number) { return std::to_string(number) + " 0 R"; }

std::string PdfText(std::string_view text) {
  const std::string clean = Clean(text);
  const bool ascii = std::all_of(clean.begin(), clean.end(), [](char c) { return (c & 0x80) == 0; });
  std::string written;
  if (ascii) {
    written = "(";
    for (const char c : clean) {
      if (c == '(' || c == ')' || c == '\\') written.push_back('\\');
      written.push_back(c);
    }
    return written + ")";
  }
  written = "<FEFF";
  for (std::string_view rest = clean; !rest.empty();) {
    const rt::Character character = rt::FirstCharacter(rest);
    if (character.code >= 0x10000) {
      written += Hex(0xD800 + ((character.code - 0x10000) >> 10U));
      written += Hex(0xDC00 + ((character.code - 0x10000) & 0x3FFU));
    } else {
      written += Hex(character.code);
    }
    rest.remove_prefix(character.bytes);
  }
  return written + ">";
}

}  // namespace print
