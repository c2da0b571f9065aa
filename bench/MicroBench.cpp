// Single operations.
#include <benchmark/benchmark.h>

#include <memory>

#include "bench/Measure.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "platform/runtime/Text.h"
#include "platform/store/Cursor.h"
#include "platform/store/Dialect.h"

namespace bench {
namespace {

struct Fleet {
  Directory directory;
  Fleet() { MakeFleet(directory.Path(), 50, 2); }
  std::string Main() const { return directory.Path("DW.MDB"); }
};

Fleet& TheFleet() {
  static Fleet fleet;
  return fleet;
}

void OpenAndClose(benchmark::State& state) {
  const std::string path = TheFleet().Main();
  for (auto round : state) benchmark::DoNotOptimize(store::Connection::Open({path}));
}
BENCHMARK(OpenAndClose);

void OpenAskClose(benchmark::State& state) {
  const std::string path = TheFleet().Main();
  for (auto round : state) {
    auto file = store::Connection::Open({path});
    auto row =
        store::Cursor::OpenQuery(file, "SELECT * FROM [Parameters] WHERE [ID] = 1", store::Locking::ReadOnly);
    benchmark::DoNotOptimize(row->Get(0));
  }
}
BENCHMARK(OpenAskClose);

void LockAndUnlock(benchmark::State& state) {
  auto file = store::Connection::Open({TheFleet().Main()});
  auto row =
      store::Cursor::OpenQuery(file, "SELECT * FROM Vehicles WHERE ID = 3", store::Locking::Pessimistic);
  for (auto round : state) {
    row->Edit();
    row->CancelUpdate();
  }
}
BENCHMARK(LockAndUnlock);

void LockEditUpdateUnlock(benchmark::State& state) {
  auto file = store::Connection::Open({TheFleet().Main()});
  auto row =
      store::Cursor::OpenQuery(file, "SELECT * FROM Vehicles WHERE ID = 3", store::Locking::Pessimistic);
  const int field = row->FieldIndex("Description");
  int number = 0;
  for (auto round : state) {
    row->Edit();
    row->Set(field, std::to_string(++number));
    row->Update();
  }
}
BENCHMARK(LockEditUpdateUnlock)->Unit(benchmark::kMicrosecond);

void SmallQuery(benchmark::State& state) {
  auto file = store::Connection::Open({TheFleet().Main()});
  for (auto round : state) {
    auto row = store::Cursor::OpenQuery(file, "SELECT * FROM [Vehicles] WHERE [Asset ID] = 'NONE'",
                                        store::Locking::ReadOnly);
    benchmark::DoNotOptimize(row->AtEnd());
  }
}
BENCHMARK(SmallQuery);

void TakeStatementApart(benchmark::State& state) {
  for (auto round : state)
    benchmark::DoNotOptimize(store::Normalize("SELECT * FROM [Vehicles] WHERE [Asset ID] = 'TRK-0001'"));
}
BENCHMARK(TakeStatementApart);

}  // namespace

int Micro(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace bench
