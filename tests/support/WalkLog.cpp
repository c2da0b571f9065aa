#include "support/WalkLog.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace walk {

Log::Log(const std::string& path)
    : file_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644)) {
  if (file_ < 0) throw std::runtime_error("no log " + path);
}
Log::~Log() { close(file_); }

void Log::Write(const std::string& lines) const {
  if (write(file_, lines.data(), lines.size()) != static_cast<ssize_t>(lines.size()))
    throw std::runtime_error("the log is full");
}

void Log::Intend(const Transaction& t) {
  std::ostringstream lines;
  lines << "T " << t.token << ' ' << static_cast<int>(t.work) << ' ' << t.group << ' ' << t.groupAmount
        << '\n';
  for (const Change& c : t.changes)
    lines << "C " << c.kind << ' ' << c.table << ' ' << c.row << ' ' << c.version << ' ' << c.token << ' '
          << c.amount << '\n';
  Write(lines.str());
}

void Log::Tell(std::int64_t token, End end, std::int64_t row) {
  Write("E " + std::to_string(token) + ' ' + static_cast<char>(end) + ' ' + std::to_string(row) + '\n');
}

std::vector<Transaction> Log::Read(const std::string& path) {
  std::vector<Transaction> all;
  std::map<std::int64_t, std::size_t> places;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    char what = 0;
    words >> what;
    if (what == 'T') {
      Transaction t;
      int work = 0;
      words >> t.token >> work >> t.group >> t.groupAmount;
      t.work = static_cast<Work>(work);
      places[t.token] = all.size();
      all.push_back(t);
    } else if (what == 'C') {
      Change c;
      words >> c.kind >> c.table >> c.row >> c.version >> c.token >> c.amount;
      all.back().changes.push_back(c);
    } else {
      std::int64_t token = 0;
      std::int64_t row = 0;
      char end = 0;
      words >> token >> end >> row;
      Transaction& t = all[places.at(token)];
      t.end = static_cast<End>(end);
      for (Change& c : t.changes)
        if (c.row == 0) c.row = row;
    }
  }
  return all;
}

}  // namespace walk
