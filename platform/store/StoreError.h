// Errors of the store, with the numbers the field knows them by.
#pragma once

#include <string>

#include "platform/runtime/Error.h"

namespace store {

/// What goes wrong in a data file, by the numbers that messages and waits go by. Every engine gives its own
/// errors these numbers.
enum Error : int {
  kOverflow = 6,
  kDuplicateKey = 3022,
  kNoCurrentRecord = 3021,
  kUpdateWithoutEdit = 3020,
  kFileNotFound = 3024,
  kDiskFull = 3026,
  kReadOnly = 3027,
  kTransactionMissing = 3034,
  kLaterVersion = 3041,
  kPathNotFound = 3044,
  kFileInUse = 3045,
  kNotOurs = 3049,
  kTableLocked = 3009,
  kCannotStart = 3051,
  kTooFewParameters = 3061,
  kSyntax = 3075,
  kTableNotFound = 3078,
  kAmbiguousColumn = 3079,
  kTableExists = 3010,
  kRelationExists = 3012,
  kFieldExists = 3191,
  kIndexExists = 3284,
  kFileExists = 3204,
  kRecordDeleted = 3167,
  kFieldTooSmall = 3163,
  kCannotCompactDiskFull = 3183,
  kSaveLocked = 3186,
  kSessionLocked = 3188,
  kExclusiveNeeded = 3196,
  kDataChanged = 3197,
  kEditLocked = 3218,
  kCannotUpdate = 3251,
  kSelectNotExecuted = 3065,
  kFieldInIndex = 3280,
  kNotAnIndex = 3015,
  kRecordLocked = 3260,
  kItemNotFound = 3265,
  kFieldRequired = 3314,
  kZeroLength = 3315,
  kTypeMismatch = 3421,
  kBadFormat = 3343,
  kOpenedExclusively = 3356,
  kInternal = 3000,
};

/// Passes through the record models to whoever takes a step on a file. Most steps make a dw::Failure of it
/// (data/Attempt.h). Runs over many records and the commands of dwadmin let it through; their headers say so.
class StoreError : public rt::Error {
 public:
  StoreError(int number, const std::string& text) : rt::Error(number, text) {}
};

}  // namespace store
