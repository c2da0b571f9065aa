#include "platform/print/pages/PageStore.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "platform/print/PrintError.h"
#include "platform/print/pages/PagePacking.h"
#include "print/SamplePages.h"
#include "robustness/FullDisk.h"
#include "support/Apart.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

TEST(PageStore, GivesBackEveryPageAsItWas) {
  ReportFacts facts;
  facts.title = "Costs";
  facts.columns.resize(1);
  PageStore store(facts);
  std::vector<Page> pages;
  test::RandomPages random(11);
  for (int i = 0; i < 400; ++i) {
    pages.push_back(random.Next());
    store.Append(pages.back());
    EXPECT_EQ(store.PageCount(), i + 1);
  }
  EXPECT_FALSE(store.Finished());
  store.Finish();
  EXPECT_TRUE(store.Finished());
  EXPECT_EQ(store.Facts().title, "Costs");
  EXPECT_EQ(store.Facts().columns.size(), 1U);
  for (std::size_t i = pages.size(); i-- > 0;)
    ASSERT_TRUE(store.Read(static_cast<int>(i)) == pages[i]) << "page " << i;
  EXPECT_THROW(store.Read(-1), PrintError);
  EXPECT_THROW(store.Read(400), PrintError);
}

TEST(PageStore, DamagedBytesAreAnErrorAndNoCrash) {
  test::RandomPages random(12);
  std::string bytes;
  for (int round = 0; round < 300; ++round) {
    PackPage(random.Next(), &bytes);
    std::string damaged = bytes;
    const int last = static_cast<int>(bytes.size()) - 1;
    for (int hit = random.Number(1, 5); hit > 0; --hit)
      damaged[static_cast<std::size_t>(random.Number(0, last))] = static_cast<char>(random.Number(0, 255));
    if (random.Number(0, 1) == 1) damaged.resize(static_cast<std::size_t>(random.Number(0, last)));
    try {
      UnpackPage(damaged);
    } catch (const PrintError&) {
    }
  }
  EXPECT_THROW(UnpackPage(""), PrintError);
  EXPECT_THROW(UnpackPage(std::string_view(bytes).substr(0, bytes.size() / 2)), PrintError);
}

TEST(PageStore, SlotsAreEmptyUntilTheyAreFilled) {
  PageStore store({});
  const int pages = store.NewSlot();
  const int share = store.NewSlot();
  EXPECT_NE(pages, share);
  EXPECT_FALSE(store.Slot(pages).has_value());
  store.FillSlot(share, {"12.5 %", 0.125});
  EXPECT_FALSE(store.Slot(pages).has_value());
  EXPECT_EQ(store.Slot(share), (SlotValue{"12.5 %", 0.125}));
  // Also an empty text is a value.
  store.FillSlot(pages, {"", {}});
  EXPECT_EQ(store.Slot(pages), (SlotValue{"", {}}));
  store.FillSlot(pages, {std::string(4000, 'x'), "y"});
  EXPECT_EQ(store.Slot(pages)->text.size(), 4000U);
  EXPECT_FALSE(store.Slot(-1).has_value());
  EXPECT_FALSE(store.Slot(2).has_value());
  EXPECT_THROW(store.FillSlot(2, {}), PrintError);
}

TEST(PageStore, ManyReadWhileOneAppends) {
  PageStore store({});
  test::RandomPages random(13);
  std::vector<Page> pages;
  for (int i = 0; i < 600; ++i) pages.push_back(random.Next());
  std::atomic<int> wrong = 0;
  std::atomic<int> reads = 0;
  std::vector<std::thread> readers;
  for (unsigned reader = 0; reader < 4; ++reader) {
    readers.emplace_back([&, reader] {
      std::mt19937 place(reader);
      for (;;) {
        const bool last = store.Finished();
        const int count = store.PageCount();
        for (int i = 0; i < 20 && count > 0; ++i) {
          const int index = static_cast<int>(place() % static_cast<unsigned>(count));
          if (store.Read(index) != pages[static_cast<std::size_t>(index)]) ++wrong;
          const auto slot = store.Slot(index);
          if (!slot || slot->text != std::to_string(index)) ++wrong;
          ++reads;
        }
        if (last) return;
      }
    });
  }
  for (int i = 0; i < 600; ++i) {
    store.FillSlot(store.NewSlot(), {std::to_string(i), i});
    store.Append(pages[static_cast<std::size_t>(i)]);
    store.AddOutline({0, "Entry", i, 0});
  }
  store.Finish();
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_GE(reads, 80);
  EXPECT_EQ(store.Outline().size(), 600U);
}

TEST(PageStore, LeavesNoNameInTheTemporaryDirectory) {
  const test::TempDirectory directory;
  EXPECT_EQ(test::RunApart([&] {
              setenv("TMPDIR", directory.Path().c_str(), 1);
              PageStore store({});
              store.Append(Page{});
              return std::string(std::filesystem::is_empty(directory.Path()) ? "no name" : "a name");
            }),
            "no name");
  EXPECT_EQ(test::RunApart([&]() -> std::string {
              setenv("TMPDIR", directory.Path("missing").c_str(), 1);
              try {
                const PageStore store({});
              } catch (const PrintError& error) {
                return error.what();
              }
              return "made";
            }),
            "No temporary file for the pages can be made in '" + directory.Path("missing") +
                "': there is no such directory.");
}

/// Appends until the disk is full, then reads what is there, makes room and goes on.
std::string FillTheDisk(test::DiskKind kind, const std::string& directory) {
  test::Faults faults;
  test::Disk disk(kind, directory);
  setenv("TMPDIR", directory.c_str(), 1);
  PageStore store({});
  test::RandomPages random(14);
  std::vector<Page> pages;
  for (int i = 0; i < 2; ++i) {
    pages.push_back(random.Next());
    store.Append(pages.back());
  }
  disk.Fill(directory, 300000);
  std::string failure;
  while (failure.empty() && pages.size() < 20000) {
    const Page page = random.Next();
    try {
      store.Append(page);
      pages.push_back(page);
    } catch (const PrintError& error) {
      failure = error.what();
    }
  }
  faults.Equal(failure,
               "Page " + std::to_string(pages.size() + 1) + " cannot be stored in '" + directory +
                   "', where temporary files are: the disk is full.",
               "the error");
  const auto check = [&](const std::string& when) {
    faults.Equal(store.PageCount(), static_cast<int>(pages.size()), "the number of pages " + when);
    for (std::size_t i = 0; i < pages.size(); ++i)
      if (store.Read(static_cast<int>(i)) != pages[i]) faults.Add("page " + std::to_string(i) + " " + when);
  };
  check("on the full disk");
  disk.Free();
  for (int i = 0; i < 10; ++i) {
    pages.push_back(random.Next());
    store.Append(pages.back());
  }
  check("after room was made");
  return faults.Text();
}

TEST(PageStore, StaysReadableWhenTheTemporaryDiskIsFull) {
  const test::TempDirectory directory;
  EXPECT_EQ(test::RunApart([&] { return FillTheDisk(test::DiskKind::FileLimit, directory.Path()); }), "");
}

TEST(PageStore, StaysReadableOnASmallDisk) {
  const test::TempDirectory directory;
  const std::string refused = test::RunApart([&] { return test::Disk::Mount(directory.Path()); });
  if (!refused.empty()) GTEST_SKIP() << "No disk can be mounted here: " << refused;
  EXPECT_EQ(test::RunApart([&] { return FillTheDisk(test::DiskKind::SmallDisk, directory.Path()); }), "");
}

}  // namespace
}  // namespace print
