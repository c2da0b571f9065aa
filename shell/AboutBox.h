// What the About box shows of the organization, and what the program keeps of it.
#pragma once

#include <array>
#include <string>

namespace dw {

struct AboutFacts {
  std::array<std::string, 4> organization;  ///< name and three lines of address
  std::string dateInstalled;                ///< in the short form; empty if none is on file
};

/// Reads the row of `Parameters`, and adds it if the main file is new and has none. Sets OrganisationName,
/// AppVersion, and SystemPath and SystemFile if the settings name the system's directory. Without a main file
/// everything is empty; engine errors are thrown.
AboutFacts LoadAboutBox();

}  // namespace dw
