#ifdef DROVEWRIGHT_SANE
#include "platform/scan/SaneDevice.h"

#include <sane/saneopts.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <future>
#include <memory>
#include <thread>

#include "platform/scan/ScanRows.h"

namespace sys {
namespace {

constexpr int kUsualResolutions[] = {75, 100, 150, 200, 300, 600};
constexpr std::size_t kMostBytes = 512u * 1024 * 1024;
constexpr std::size_t kBlock = 256 * 1024;
constexpr double kMillimetresPerInch = 25.4;

using Clock = std::chrono::steady_clock;
constexpr auto kShowEvery = std::chrono::milliseconds(150);
constexpr auto kCancelPatience = std::chrono::seconds(5);

bool driverHangs = false;

bool IsNumber(const SANE_Option_Descriptor& option) {
  return (option.type == SANE_TYPE_INT || option.type == SANE_TYPE_FIXED) &&
         option.size == static_cast<SANE_Int>(sizeof(SANE_Word));
}

double FromWord(const SANE_Option_Descriptor& option, SANE_Word word) {
  return option.type == SANE_TYPE_FIXED ? SANE_UNFIX(word) : static_cast<double>(word);
}

bool Takes(const SANE_Option_Descriptor& option, double value) {
  if (option.constraint_type == SANE_CONSTRAINT_RANGE) {
    return value >= FromWord(option, option.constraint.range->min) &&
           value <= FromWord(option, option.constraint.range->max);
  }
  if (option.constraint_type != SANE_CONSTRAINT_WORD_LIST) return true;
  const SANE_Word* words = option.constraint.word_list;
  return std::any_of(words + 1, words + 1 + words[0],
                     [&](SANE_Word word) { return std::abs(FromWord(option, word) - value) < 0.5; });
}

ScanPass PassOf(const SANE_Parameters& parameters) {
  ScanPass pass;
  pass.bits = parameters.depth;
  pass.width = parameters.pixels_per_line;
  pass.bytesPerRow = static_cast<std::size_t>(std::max(parameters.bytes_per_line, 0));
  switch (parameters.format) {
    case SANE_FRAME_RGB:
      pass.samples = ScanPass::Samples::RedGreenBlue;
      break;
    case SANE_FRAME_RED:
      pass.samples = ScanPass::Samples::Red;
      break;
    case SANE_FRAME_GREEN:
      pass.samples = ScanPass::Samples::Green;
      break;
    case SANE_FRAME_BLUE:
      pass.samples = ScanPass::Samples::Blue;
      break;
    case SANE_FRAME_GRAY:
      break;
    default:
      pass.bits = 0;
  }
  return pass;
}

}  // namespace

SaneDevice::SaneDevice(const SaneLibrary& library, const std::string& name) : library_(library) {
  Check(library_.open(name.c_str(), &handle_));
}

SaneDevice::~SaneDevice() {
  if (!hangs_) library_.close(handle_);
}

bool SaneDevice::DriverHangs() { return driverHangs; }

// Drivers with a thread of their own may wait forever for its end, which must not hang the program.
void SaneDevice::Cancel() {
  auto ended = std::make_shared<std::promise<void>>();
  std::future<void> end = ended->get_future();
  std::thread([cancel = library_.cancel, handle = handle_, ended] {
    cancel(handle);
    ended->set_value();
  }).detach();
  hangs_ = end.wait_for(kCancelPatience) != std::future_status::ready;
  driverHangs = driverHangs || hangs_;
}

void SaneDevice::Check(SANE_Status status) const {
  if (status != SANE_STATUS_GOOD) throw ScanError(std::string(library_.strstatus(status)) + ".");
}

SaneDevice::Option SaneDevice::Find(const char* name) const {
  // A change of one option may change the others, so this reads them again each time.
  SANE_Int count = 0;
  library_.controlOption(handle_, 0, SANE_ACTION_GET_VALUE, &count, nullptr);
  for (SANE_Int index = 1; index < count; ++index) {
    const SANE_Option_Descriptor* option = library_.getOptionDescriptor(handle_, index);
    if (!option || !option->name || std::strcmp(option->name, name) != 0) continue;
    if (SANE_OPTION_IS_ACTIVE(option->cap) && SANE_OPTION_IS_SETTABLE(option->cap)) return {index, option};
  }
  return {0, nullptr};
}

double SaneDevice::Number(const Option& option) const {
  SANE_Word word = 0;
  Check(library_.controlOption(handle_, option.index, SANE_ACTION_GET_VALUE, &word, nullptr));
  return FromWord(*option.descriptor, word);
}

void SaneDevice::SetNumber(const Option& option, double value) {
  SANE_Word word = option.descriptor->type == SANE_TYPE_FIXED ? SANE_FIX(value)
                                                              : static_cast<SANE_Word>(std::lround(value));
  Check(library_.controlOption(handle_, option.index, SANE_ACTION_SET_VALUE, &word, nullptr));
}

void SaneDevice::SetText(const Option& option, const std::string& value) {
  std::vector<char> text(static_cast<std::size_t>(std::max(option.descriptor->size, 1)), '\0');
  value.copy(text.data(), text.size() - 1);
  Check(library_.controlOption(handle_, option.index, SANE_ACTION_SET_VALUE, text.data(), nullptr));
}

std::vector<int> SaneDevice::Resolutions() const {
  std::vector<int> all;
  const Option option = Find(SANE_NAME_SCAN_RESOLUTION);
  if (!option.descriptor || !IsNumber(*option.descriptor)) return all;
  for (const int one : kUsualResolutions)
    if (Takes(*option.descriptor, one)) all.push_back(one);
  return all;
}

int SaneDevice::Resolution() const {
  const Option option = Find(SANE_NAME_SCAN_RESOLUTION);
  return option.descriptor && IsNumber(*option.descriptor) ? static_cast<int>(std::lround(Number(option)))
                                                           : 0;
}

void SaneDevice::SetResolution(int dotsPerInch) {
  const Option option = Find(SANE_NAME_SCAN_RESOLUTION);
  if (option.descriptor && IsNumber(*option.descriptor)) SetNumber(option, dotsPerInch);
}

std::vector<std::string> SaneDevice::Modes() const {
  std::vector<std::string> all;
  const Option option = Find(SANE_NAME_SCAN_MODE);
  if (!option.descriptor || option.descriptor->constraint_type != SANE_CONSTRAINT_STRING_LIST) return all;
  for (const SANE_String_Const* one = option.descriptor->constraint.string_list; *one; ++one)
    all.emplace_back(*one);
  return all;
}

std::string SaneDevice::Mode() const {
  const Option option = Find(SANE_NAME_SCAN_MODE);
  if (!option.descriptor || option.descriptor->type != SANE_TYPE_STRING) return {};
  std::vector<char> text(static_cast<std::size_t>(option.descriptor->size) + 1, '\0');
  Check(library_.controlOption(handle_, option.index, SANE_ACTION_GET_VALUE, text.data(), nullptr));
  return text.data();
}

void SaneDevice::SetMode(const std::string& mode) {
  const Option option = Find(SANE_NAME_SCAN_MODE);
  if (option.descriptor && option.descriptor->type == SANE_TYPE_STRING) SetText(option, mode);
}

void SaneDevice::SetDepth() {
  const Option option = Find(SANE_NAME_BIT_DEPTH);
  if (option.descriptor && IsNumber(*option.descriptor) && Takes(*option.descriptor, 8)) SetNumber(option, 8);
}

void SaneDevice::SetArea(double width, double height) {
  SetEdges(SANE_NAME_SCAN_TL_X, SANE_NAME_SCAN_BR_X, width);
  SetEdges(SANE_NAME_SCAN_TL_Y, SANE_NAME_SCAN_BR_Y, height);
}

void SaneDevice::SetEdges(const char* low, const char* high, double millimetres) {
  for (const char* name : {low, high}) {
    const Option option = Find(name);
    if (!option.descriptor || !IsNumber(*option.descriptor) ||
        option.descriptor->constraint_type != SANE_CONSTRAINT_RANGE)
      return;
    const double least = FromWord(*option.descriptor, option.descriptor->constraint.range->min);
    const double most = FromWord(*option.descriptor, option.descriptor->constraint.range->max);
    double wanted = most;
    if (name == low) wanted = least;
    if (name == high && millimetres > 0) {
      const bool inPixels = option.descriptor->unit == SANE_UNIT_PIXEL;
      wanted = least + (inPixels ? millimetres / kMillimetresPerInch * Resolution() : millimetres);
    }
    SetNumber(option, std::clamp(wanted, least, most));
  }
}

ScannedPicture SaneDevice::Read(ScanDisplay* display) {
  ScannedPicture picture;
  picture.dotsPerInch = Resolution();
  try {
    ReadPasses(picture, display);
  } catch (...) {
    Cancel();
    throw;
  }
  // A successful scan ends in the same way.
  Cancel();
  if (picture.height < 1) throw ScanError("The scanner has sent no picture.");
  if (display) display->ShowScan(picture, picture.height);
  return picture;
}

void SaneDevice::ReadPasses(ScannedPicture& picture, ScanDisplay* display) {
  while (!ReadPass(picture, display)) continue;
}

bool SaneDevice::ReadPass(ScannedPicture& picture, ScanDisplay* display) {
  Check(library_.start(handle_));
  SANE_Parameters parameters{};
  Check(library_.getParameters(handle_, &parameters));
  const ScanPass pass = PassOf(parameters);
  if (!IsKnown(pass) || (picture.width > 0 && picture.width != pass.width))
    throw ScanError("The scanner sends a kind of picture that is not known here.");
  const int rows = std::max(parameters.lines, 0);
  const std::size_t most = kMostBytes / 3 / static_cast<std::size_t>(pass.width);
  if (static_cast<std::size_t>(rows) > most) throw ScanError("The picture would be too large.");
  picture.pixels.reserve(static_cast<std::size_t>(rows) * static_cast<std::size_t>(pass.width) * 3);

  std::vector<std::uint8_t> block(std::max(kBlock, 2 * pass.bytesPerRow));
  std::size_t held = 0;
  int y = 0;
  auto shown = Clock::now();
  for (;;) {
    SANE_Int got = 0;
    const SANE_Status status =
        library_.read(handle_, &block[held], static_cast<SANE_Int>(block.size() - held), &got);
    if (status == SANE_STATUS_EOF) break;
    Check(status);
    held += static_cast<std::size_t>(got);
    std::size_t used = 0;
    // A device may send more rows than it announced, even more than a picture may have.
    for (; held - used >= pass.bytesPerRow && static_cast<std::size_t>(y) < most; used += pass.bytesPerRow)
      AddRow(pass, &block[used], y++, picture);
    if (static_cast<std::size_t>(y) >= most) throw ScanError("The picture would be too large.");
    std::copy(block.begin() + static_cast<std::ptrdiff_t>(used),
              block.begin() + static_cast<std::ptrdiff_t>(held), block.begin());
    held -= used;
    if (display && Clock::now() - shown >= kShowEvery) {
      display->ShowScan(picture, rows);
      shown = Clock::now();
    }
  }
  return parameters.last_frame;
}

}  // namespace sys
#endif
