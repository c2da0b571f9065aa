// What the About box tells of the organisation, and what the program keeps of it.
#pragma once

#include <array>
#include <string>

namespace dw {

struct AboutFacts {
  std::array<std::string, 4> organisation;  ///< name and three lines of address
  std::string dateInstalled;                ///< in the short form; empty where none is on file
};

/// Reads the row of `Parameters`, and adds it where the main file is new and has none. Sets OrganisationName,
/// AppVersion, and SystemPath and SystemFile where the settings name the system's directory. Without a main
/// file everything is empty; engine errors are thrown.
AboutFacts LoadAboutBox();

}  // namespace dw
