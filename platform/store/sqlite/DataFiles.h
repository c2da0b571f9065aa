// Data files as a whole: making, compacting and deleting them.
#pragma once

#include <memory>
#include <string>

#include "platform/store/Compaction.h"

namespace store {

/// See Engine::Create.
void CreateFile(const std::string& path);
/// See Engine::Compact.
[[nodiscard]] std::shared_ptr<Compaction> CompactFile(const std::string& path, const std::string& target);
/// See Engine::InUse.
bool FileInUse(const std::string& path);
/// See Engine::Drop.
void DropFile(const std::string& path);

}  // namespace store
