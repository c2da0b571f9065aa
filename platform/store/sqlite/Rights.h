// Who may use what stands beside a data file.
//
// The side file and the journal are made by whoever needs them first. They get the group and the rights of
// the data file, so that everybody who may write the data file may write them too, also in a directory that
// does not hand its group on to new files.
#pragma once

#include <sys/stat.h>

#include <string>

namespace store {

/// Gives a file that this user owns the group and the rights of the data file, and for the administrator its
/// owner too. False where the group or the owner is not this user's to give.
bool GiveRights(int fd, const struct stat& data);

/// Which of the files that a change of the data file needs cannot be written, whose it is, and what helps;
/// empty where all can. Looks at the directory, the side file and the journal.
std::string WhatIsClosed(const std::string& dataFile);

/// The name of the file system layer through which the engine opens data files: it gives new journals the
/// rights of their data file.
const char* FileLayer();

}  // namespace store
