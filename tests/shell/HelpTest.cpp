#include "shell/Help.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include "shell/HelpPage.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;

const fs::path kPages = HELP_PAGES;

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The pages of the help, by their file names.
class HelpPagesTest : public testing::Test {
 protected:
  HelpPagesTest() {
    dw::UseHelpDirectory(kPages.string());
    for (const auto& entry : fs::directory_iterator(kPages))
      if (entry.path().extension() == ".html") pages_[entry.path().filename()] = ReadAll(entry.path());
  }
  ~HelpPagesTest() override { dw::SetUpHelp(); }

  /// Whether the target of "page.html" or "page.html#anchor" exists.
  bool Leads(const std::string& link, const std::string& from) const {
    const std::size_t hash = link.find('#');
    const auto page = pages_.find(hash == 0 ? from : link.substr(0, hash));
    if (page == pages_.end()) return false;
    return hash == std::string::npos ||
           page->second.find("<a name=\"" + link.substr(hash + 1) + "\">") != std::string::npos;
  }

  std::map<std::string, std::string> pages_;
};

TEST_F(HelpPagesTest, EveryWindowHasItsPage) {
  for (const char* window : {"BFLogon",
                             "GetDataPath",
                             "frmGetSQLInfo",
                             "Startup",
                             "mnuDW",
                             "TechSupport",
                             "HelpWindow",
                             "frmDivisionList",
                             "frmDivisionMaint",
                             "frmClassList",
                             "frmClassMaint",
                             "frmFuelTypesList",
                             "frmFuelTypeMaint",
                             "frmPricingList",
                             "frmPricingMaint",
                             "frmPriceLogList",
                             "frmFuelPriceLogMaint",
                             "frmPeriodsList",
                             "frmPeriodsMaint",
                             "frmFiscalYearSetup",
                             "frmScheduleTypesList",
                             "frmScheduleTypeMaint",
                             "frmOdometerList",
                             "frmOdometerMaint",
                             "frmTransactionList",
                             "frmTransactionMaint",
                             "frmMaintTaskMaint",
                             "frmRePost",
                             "frmMaintenanceDueReport",
                             "frmInventoryList",
                             "frmInventoryMaint",
                             "frmSchedMaintAsset",
                             "frmAssetPicture",
                             "frmGetPictureFile",
                             "PreviewWindow",
                             "ReportForm",
                             "frmRptDWR004",
                             "frmRptDWR006",
                             "frmRptDWR009",
                             "frmRptDWR013",
                             "frmRptDWR016",
                             "frmRptDWR017",
                             "frmCriteriaList",
                             "frmCriteriaMaint",
                             "frmSelectMaint",
                             "frmSortMaint",
                             "PrintForm"}) {
    const std::string page = dw::PageOf(window);
    EXPECT_TRUE(Leads(page, {})) << window << ": " << page;
  }
  EXPECT_EQ(dw::PageOf("frmDivisionMaint"), "frmDivisionList.html#frmDivisionMaint");
  EXPECT_EQ(dw::PageOf("frmNowhere"), "");
  EXPECT_EQ(dw::PageOf(""), "");

  std::set<std::string> explained;
  for (const auto& [file, html] : pages_)
    for (const std::string& window : dw::ReadHelpPage(file, html).windows)
      EXPECT_TRUE(explained.insert(window).second) << window << " is explained twice";
}

TEST_F(HelpPagesTest, LinksLeadSomewhere) {
  const std::regex link("(?:href|src)=\"([^\"]*)\"");
  for (const auto& [file, html] : pages_)
    for (std::sregex_iterator it(html.begin(), html.end(), link); it != std::sregex_iterator(); ++it)
      EXPECT_TRUE((*it)[1] == "help.css" || Leads((*it)[1], file)) << file << ": " << (*it)[1];
  EXPECT_TRUE(fs::exists(kPages / "help.css"));
}

TEST_F(HelpPagesTest, TheContentsListEachPageByItsTitle) {
  EXPECT_TRUE(dw::HelpAvailable());
  std::map<std::string, std::string> listed;
  for (const dw::HelpSection& section : dw::HelpContents()) {
    EXPECT_FALSE(section.title.empty());
    EXPECT_FALSE(section.entries.empty()) << section.title;
    for (const dw::HelpEntry& entry : section.entries)
      EXPECT_TRUE(listed.emplace(entry.page, entry.title).second) << entry.page;
  }
  listed[dw::kHelpContentsPage] = "Drovewright Help";
  for (const auto& [file, html] : pages_) EXPECT_EQ(listed[file], dw::ReadHelpPage(file, html).title);
}

TEST_F(HelpPagesTest, TheTextOfAMessageFindsItsPage) {
  const std::pair<const char*, const char*> kMessages[] = {
      {"That line item is already in use. Assigning new line item number.", "frmSchedMaintAsset.html"},
      {"You forgot to fill in the mileage.", "frmOdometerList.html"},
      {"the new asset id is ALREADY in use", "frmInventoryMaint.html"},
      {"Posting is Complete.", "frmRePost.html"},
      {"That window is already open with another record.", "lists.html"}};
  for (const auto& [message, page] : kMessages) {
    const auto hits = dw::SearchHelp(message);
    ASSERT_FALSE(hits.empty()) << message;
    EXPECT_EQ(hits[0].page, page) << message;
  }
}

class HelpSearchTest : public testing::Test {
 protected:
  HelpSearchTest() {
    Page("contents.html", "Contents", "", "<h2>One &amp; two</h2><a href=\"oil.html\">Oil</a>");
    Page("oil.html", "Oil", "lubricant", "<p>Nothing else.</p>");
    std::string filler;
    for (int i = 0; i < 60; ++i) filler += "<td>filler</td>";
    Page("shop.html", "Shop", "", "<p>A drop of oil.</p>" + filler + "<p>Oil<b>y</b> rags &lt;burn&gt;</p>");
    dw::UseHelpDirectory(directory_.Path());
  }
  ~HelpSearchTest() override { dw::SetUpHelp(); }

  void Page(const std::string& file, const std::string& title, const std::string& keywords,
            const std::string& body) {
    std::ofstream(directory_.Path(file))
        << "<html><head><title>" << title << "</title>\n<meta name=\"keywords\" content=\"" << keywords
        << "\"></head>\n<body class=\"hidden\">" << body << "</body></html>";
  }
  static std::string Pages(const std::string& words) {
    std::string pages;
    for (const dw::HelpHit& hit : dw::SearchHelp(words)) pages += hit.page + " ";
    return pages;
  }

  test::TempDirectory directory_;
};

TEST_F(HelpSearchTest, AllWordsInAnyCase) {
  EXPECT_EQ(Pages("oil"), "oil.html shop.html ");  // the title counts more than the text
  EXPECT_EQ(Pages("RAGS, oil!"), "shop.html ");
  EXPECT_EQ(Pages("Lubricant"), "oil.html ");
  EXPECT_EQ(Pages("oil water"), "");
  EXPECT_EQ(Pages(" \t.,"), "");
  EXPECT_EQ(Pages("hidden"), "");        // tags are not text
  EXPECT_EQ(Pages("fillerfiller"), "");  // the end of a cell ends a word
  EXPECT_EQ(Pages("contents"), "");
}

TEST_F(HelpSearchTest, TheExcerptStandsWhereMostWordsAre) {
  EXPECT_EQ(dw::SearchHelp("burn oily rags")[0].excerpt,
            "...filler filler filler filler filler Oily rags <burn>");
  EXPECT_EQ(dw::SearchHelp("drop oil")[0].excerpt.substr(0, 22), "A drop of oil. filler ");
  EXPECT_EQ(dw::BestHelpPlace("a b b a", {"c"}), 0U);
}

TEST_F(HelpSearchTest, ContentsAndMissingPages) {
  const auto contents = dw::HelpContents();
  ASSERT_EQ(contents.size(), 1U);
  EXPECT_EQ(contents[0].title, "One & two");
  ASSERT_EQ(contents[0].entries.size(), 1U);
  EXPECT_EQ(contents[0].entries[0].title + " " + contents[0].entries[0].page, "Oil oil.html");

  dw::UseHelpDirectory(directory_.Path("nowhere"));
  EXPECT_FALSE(dw::HelpAvailable());
  EXPECT_EQ(dw::PageOf("mnuDW"), "");
  EXPECT_TRUE(dw::HelpContents().empty());
  EXPECT_TRUE(dw::SearchHelp("oil").empty());
}

}  // namespace
