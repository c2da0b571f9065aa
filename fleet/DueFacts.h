// The facts of all assets, from one pass over each table.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "fleet/DueSource.h"
#include "platform/store/Connection.h"

namespace dw {

/// Finds the same facts of each asset as the queries do, and keeps some 100 bytes for an asset and 70 for a
/// line of its schedule, however many transactions there are.
///
/// It knows no facts of an asset whose code changes the meaning of a query, of an asset with a value in the
/// file that is not of its column's kind, and of an asset that was added after the pass began. DueQueries has
/// to be used for those.
class DueFacts : public DueSource {
 public:
  /// Reads the tables, and lets other users write meanwhile. If the tables are not laid out as the catalogue
  /// says, it knows no asset. Throws StoreError if the file cannot be read.
  explicit DueFacts(const std::shared_ptr<store::Connection>& connection);

  /// Whether the facts of this asset are known. The other functions may be called only for such assets.
  bool Know(const std::string& assetID);

  std::optional<DatedMileage> NewestReading(const std::string& assetID) override;
  std::optional<DatedMileage> HighestTransaction(const std::string& assetID) override;
  bool ForEachLine(const std::string& assetID, const std::function<void(const DueLine&)>& look) override;
  std::optional<DatedMileage> LastPerformance(const std::string& assetID, const DueLine& line) override;

 private:
  /// Seconds of the calendar; kNoDate is a Null, which sorts as the oldest.
  using Moment = std::int64_t;
  static constexpr Moment kNoDate = std::numeric_limits<Moment>::min();
  static constexpr std::int32_t kNone = -1;

  struct Asset {
    bool odd = false;  ///< has a value that is not of its column's kind
    bool hasReading = false;
    Moment readingDate = kNoDate;
    std::optional<float> readingMileage;
    double highestMileage = 0;  ///< 0 if no transaction has a mileage above it
    Moment highestDate = kNoDate;
    std::int32_t firstLine = kNone;
    std::int32_t lastLine = kNone;
  };
  struct Line {
    std::int32_t typeID = 0;
    bool hasType = false;
    bool performed = false;
    std::optional<std::int32_t> months;
    std::optional<std::int32_t> usage;
    std::int32_t performedKey = 0;  ///< of two performances on one date the one with the lower key counts
    Moment performedDate = kNoDate;
    std::optional<float> performedMileage;
    std::int32_t nextLine = kNone;
  };
  /// A row of `Maintenance_Performed`, kept until its transaction is read.
  struct Performed {
    std::int32_t transaction;
    std::int32_t key;
    std::int32_t type;
  };

  static bool LaidOutAsExpected(store::Connection& connection);
  void ReadCodes(const std::shared_ptr<store::Connection>& connection);
  void ReadTypes(const std::shared_ptr<store::Connection>& connection);
  void ReadSchedule(const std::shared_ptr<store::Connection>& connection);
  std::vector<Performed> ReadPerformed(const std::shared_ptr<store::Connection>& connection);
  void ReadTransactions(const std::shared_ptr<store::Connection>& connection);
  void ReadReadings(const std::shared_ptr<store::Connection>& connection);
  void NotePerformed(Asset& asset, const Performed& performed, Moment date, std::optional<float> mileage);

  static rt::Value DateValue(Moment moment);
  Asset* Find(std::string_view code);

  std::unordered_map<std::string, std::int32_t> places_;  ///< by the code in lower case
  std::vector<Asset> assets_;
  std::vector<Line> lines_;
  std::unordered_map<std::int32_t, std::string> types_;
  std::string folded_;
  bool unknowable_ = false;  ///< no asset is known
};

}  // namespace dw
