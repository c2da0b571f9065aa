#include "fleet/ExtraUsage.h"

#include <cstdint>

#include "data/FailureBox.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"

namespace dw {
namespace {

constexpr int kDaysAhead = 14;
const rt::DateTime kNoDate;

/// The time over which usage is measured. A missing date is the calendar's day zero.
struct Span {
  rt::DateTime firstDate;
  rt::DateTime lastDate;
  float firstMileage = 0;
  float lastMileage = 0;
};

/// A reading or a transaction that has a date.
struct Mark {
  rt::DateTime date;
  rt::Value mileage;
};

/// A row without a mileage changes only the date.
void Take(const Mark& mark, rt::DateTime& date, float& mileage) {
  date = mark.date;
  if (!mark.mileage.IsNull()) mileage = mark.mileage.AsSingle();
}

/// Passes on the rows of a query in their order; false, after a message, if the query fails. Skips rows
/// without a date.
template <class Seen>
bool EachMark(const AdoConnectionPtr& connection, const std::string& query, const char* dateColumn,
              Seen seen) {
  AdoRecordsetPtr rows = AdoOpenRecordset(connection, query);
  if (!rows) return false;
  for (bool first = true; !rows->AtEnd(); rows->MoveNext()) {
    const rt::Value date = rows->Get(dateColumn);
    if (date.IsNull()) continue;
    seen(Mark{date.AsDate(), rows->Get("Mileage")}, first);
    first = false;
  }
  CloseObject(rows);
  return true;
}

bool TakeReadings(const AdoConnectionPtr& connection, const std::string& code, Span& span) {
  return EachMark(connection,
                  "SELECT TOP 25 * FROM [Odometer Entries] WHERE [Asset ID] = '" + code +
                      "' ORDER BY [Date] DESC, Mileage DESC",
                  "Date", [&](const Mark& reading, bool first) {
                    if (first)
                      Take(reading, span.lastDate, span.lastMileage);
                    else if (reading.date != span.lastDate)
                      Take(reading, span.firstDate, span.firstMileage);
                  });
}

/// Transactions narrow the span of the readings: its end moves only to an earlier day, and its beginning only
/// to a later one.
bool TakeTransactions(const AdoConnectionPtr& connection, const std::string& code, Span& span) {
  return EachMark(connection,
                  "SELECT TOP 25 * FROM [Maintenance Transactions] WHERE [Asset ID] = '" + code +
                      "' ORDER BY [Transaction Date] DESC, Mileage DESC",
                  "Transaction Date", [&](const Mark& transaction, bool first) {
                    if (first) {
                      if (span.lastDate != kNoDate && rt::DateDiff("d", span.lastDate, transaction.date) < 0)
                        Take(transaction, span.lastDate, span.lastMileage);
                    } else if (transaction.date != span.lastDate &&
                               rt::DateDiff("d", span.firstDate, transaction.date) > 0) {
                      Take(transaction, span.firstDate, span.firstMileage);
                    }
                  });
}

std::int32_t TwoWeeksOf(Span span) {
  if (span.firstDate == kNoDate) span.firstMileage = 0;
  if (span.lastDate == kNoDate) span.lastMileage = 0;
  auto weeks = static_cast<float>(rt::DateDiff("w", span.firstDate, span.lastDate));
  if (weeks <= 0) weeks = 1;
  const float perWeek = (span.lastMileage - span.firstMileage) / weeks;
  const float twoWeeks = perWeek + perWeek;
  return rt::Value(static_cast<double>(twoWeeks) + 0.5).AsLong();
}

}  // namespace

std::string DefaultExtraUsage(const std::string& assetID) {
  const MainConnection main;
  if (!main.IsOpen()) return "0";
  const AdoConnectionPtr& connection = main.Connection();
  const std::string code = QuoteSQL(assetID);
  std::string usage = "0";
  const auto workOut = [&] {
    Span span;
    {
      const store::Reading reading(connection->Store());
      if (!TakeReadings(connection, code, span) || !TakeTransactions(connection, code, span)) return;
    }
    // Mileages that no meter shows may overflow; no usage is proposed then.
    try {
      usage = std::to_string(TwoWeeksOf(span));
    } catch (const rt::RuntimeError&) {
    }
  };
  Done(workOut, "The expected usage could not be worked out.");
  return usage;
}

std::string DefaultDueBy() { return rt::ShortDate(rt::DateAdd("d", kDaysAhead, rt::Today())); }

}  // namespace dw
