// systemfile: makes a fresh BFSYS.MDB, the file that the products of the family share, for the release disc.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

#include "data/Catalogue.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: systemfile DIRECTORY\n");
    return 2;
  }
  try {
    const std::filesystem::path directory = argv[1];
    std::filesystem::create_directories(directory);
    dw::CreateDataFile(directory.string(), "BFSYS.MDB");
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "systemfile: %s\n", error.what());
    return 1;
  }
}
