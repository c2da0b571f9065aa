// The words of SQLite.
#pragma once

#include "platform/store/DialectSpelling.h"

namespace store {

const dialect::Spelling& SqliteWords();

}  // namespace store
