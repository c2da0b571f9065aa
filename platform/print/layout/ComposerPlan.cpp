// What is known of a report's bands before its rows: places on this paper, styles, totals and their scopes.
#include <algorithm>
#include <cmath>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/formula/FormulaNode.h"
#include "platform/print/layout/Composer.h"

namespace print {
namespace {

Length Scaled(Length length, double scale) { return static_cast<Length>(std::lround(length * scale)); }

/// The level of the rows that a band stands for.
int OwnLevel(BandKind kind, int group, int groups) {
  switch (kind) {
    case BandKind::GroupHeader:
    case BandKind::GroupFooter:
      return group + 1;
    case BandKind::Detail:
      return groups;
    default:
      return kReportLevel;
  }
}

/// Whether all rows of a level went by when the band is evaluated.
bool IsComplete(BandKind kind, int group, int level) {
  return kind == BandKind::ReportFooter || (kind == BandKind::GroupFooter && level >= group + 1);
}

bool IsPageBand(BandKind kind) { return kind == BandKind::PageHeader || kind == BandKind::PageFooter; }

}  // namespace

Composer::Composer(const ReportDefinition& report, const ReportRows& rows, Surroundings surroundings)
    : report_(report), rows_(rows), around_(std::move(surroundings)) {
  for (const NamedStyle& style : report_.styles) {
    TextStyle text = style.text;
    // On narrower paper the letters shrink with the columns, so that what fitted still does.
    if (around_.scale < 1) text.size = Scaled(text.size, around_.scale);
    styles_.push_back(text);
  }
  if (styles_.empty()) styles_.emplace_back();
  for (std::size_t i = 0; i < report_.subreports.size(); ++i) {
    const SubreportDefinition& inner = report_.subreports[i];
    Surroundings within = around_;
    ++within.depth;
    within.outerColumns = around_.depth == 0 ? &report_.columns : nullptr;
    within.run.reportName = inner.report->name;
    const Length left = around_.left;
    for (const BandDefinition* band : {&report_.detail, &report_.reportFooter})
      for (const ItemDefinition& item : band->items)
        if (item.kind == ItemDefinition::Kind::Subreport && item.subreport == inner.name)
          within.left = left + Scaled(item.left, around_.scale);
    for (const GroupDefinition& group : report_.groups)
      for (const BandDefinition* band : {&group.header, &group.footer})
        for (const ItemDefinition& item : band->items)
          if (item.kind == ItemDefinition::Kind::Subreport && item.subreport == inner.name)
            within.left = left + Scaled(item.left, around_.scale);
    subreports_.push_back(std::make_unique<Composer>(*inner.report, *rows_.subreports.at(i).rows, within));
  }
  reportHeader_ = PlanBand(report_.reportHeader, BandKind::ReportHeader, -1);
  pageHeader_ = PlanBand(report_.pageHeader, BandKind::PageHeader, -1);
  for (std::size_t i = 0; i < report_.groups.size(); ++i) {
    const GroupDefinition& group = report_.groups[i];
    headers_.push_back(PlanBand(group.header, BandKind::GroupHeader, static_cast<int>(i)));
    footers_.push_back(PlanBand(group.footer, BandKind::GroupFooter, static_cast<int>(i)));
    treeTitles_.push_back(PlanFormula(group.treeTitle.Empty() ? group.key : group.treeTitle,
                                      BandKind::GroupHeader, static_cast<int>(i)));
  }
  detail_ = PlanBand(report_.detail, BandKind::Detail, -1);
  pageFooter_ = PlanBand(report_.pageFooter, BandKind::PageFooter, -1);
  reportFooter_ = PlanBand(report_.reportFooter, BandKind::ReportFooter, -1);
  book_ = std::make_unique<TotalsBook>(totals_);
  repeated_ = std::make_shared<RepeatedHeaders>();
}

Composer::~Composer() = default;

BandPlan Composer::PlanBand(const BandDefinition& band, BandKind kind, int group) {
  BandPlan plan;
  plan.band = &band;
  plan.kind = kind;
  plan.group = group;
  plan.showIf = PlanFormula(band.showIf, kind, group);
  for (const ItemDefinition& item : band.items) plan.items.push_back(PlanItem(item, kind, group));
  std::stable_sort(plan.items.begin(), plan.items.end(),
                   [](const ItemPlan& a, const ItemPlan& b) { return a.item->top < b.item->top; });
  return plan;
}

ItemPlan Composer::PlanItem(const ItemDefinition& item, BandKind kind, int group) {
  ItemPlan plan;
  plan.item = &item;
  plan.value = PlanFormula(item.value, kind, group);
  plan.visible = PlanFormula(item.visible, kind, group);
  plan.column = ColumnOf(item);
  const auto styleAt = std::min(static_cast<std::size_t>(std::max(item.style, 0)), styles_.size() - 1);
  plan.style = styles_[styleAt];
  if (styleAt < report_.styles.size()) {
    const NamedStyle& style = report_.styles[styleAt];
    plan.align = style.align;
    plan.look.format = style.format;
    plan.look.negative = style.negative;
  }
  if (item.align) plan.align = *item.align;
  if (!item.format.empty()) plan.look.format = item.format;
  if (item.column >= 0) {
    const ColumnDefinition& column = report_.columns[static_cast<std::size_t>(item.column)];
    plan.left = around_.left + Scaled(column.left, around_.scale);
    plan.width = around_.left + Scaled(column.left + column.width, around_.scale) - plan.left;
  } else {
    plan.left = around_.left + Scaled(item.left, around_.scale);
    plan.width =
        item.width ? Scaled(*item.width, around_.scale) : std::max<Length>(0, around_.right - plan.left);
  }
  plan.look.width = plan.width;
  plan.look.grows = item.grows;
  if (item.height && !item.grows)
    plan.look.lines =
        std::max(1, static_cast<int>(*item.height / std::max<Length>(1, LineHeight(plan.style))));
  if (item.kind == ItemDefinition::Kind::Subreport)
    for (std::size_t i = 0; i < report_.subreports.size(); ++i)
      if (report_.subreports[i].name == item.subreport) plan.subreport = static_cast<int>(i);
  const FormulaNode* root = item.value.Root();
  plan.label = root == nullptr || root->kind == NodeKind::Literal;
  plan.columnTotal = item.column >= 0 && kind != BandKind::Detail && TotalsDetailColumn(item);
  // A plain field without a format of its own is shown as fields of its type are.
  if (plan.look.format.empty() && root != nullptr && root->kind == NodeKind::Field)
    plan.look.format = report_.fields.at(static_cast<std::size_t>(root->place)).format;
  return plan;
}

int Composer::ColumnOf(const ItemDefinition& item) const {
  if (item.column < 0 || around_.depth == 0) return item.column;
  if (around_.outerColumns == nullptr) return -1;
  const std::string& name = report_.columns[static_cast<std::size_t>(item.column)].name;
  for (std::size_t i = 0; i < around_.outerColumns->size(); ++i)
    if ((*around_.outerColumns)[i].name == name) return static_cast<int>(i);
  return -1;
}

bool Composer::TotalsDetailColumn(const ItemDefinition& item) const {
  const auto sole = item.value.SoleTotal();
  if (!sole) return false;
  const Total& total = item.value.Totals()[static_cast<std::size_t>(*sole)];
  if (total.kind != TotalKind::Sum || total.scope != TotalScope::Band) return false;
  return std::any_of(
      report_.detail.items.begin(), report_.detail.items.end(), [&](const ItemDefinition& detail) {
        return detail.column == item.column && SameArgument(detail.value.Root(), total.argument.get());
      });
}

PlannedFormula Composer::PlanFormula(const Formula& formula, BandKind kind, int group) {
  PlannedFormula use;
  use.formula = &formula;
  for (const Total& total : formula.Totals()) {
    use.totals.push_back(PlanTotal(total, kind, group));
    const int level = totals_.Entries()[static_cast<std::size_t>(use.totals.back().accumulator)].level;
    use.ofPage = use.ofPage || level < kReportLevel;
  }
  return use;
}

TotalUse Composer::PlanTotal(const Total& total, BandKind kind, int group) {
  const int own = OwnLevel(kind, group, static_cast<int>(report_.groups.size()));
  int level = own;
  if (total.scope == TotalScope::Report) level = kReportLevel;
  if (total.scope == TotalScope::Group) level = total.group + 1;
  if (total.scope == TotalScope::Page) level = kPageLevel;
  TotalUse use;
  if (total.kind == TotalKind::Percent) {
    int whole = level;
    if (total.scope == TotalScope::Band && kind != BandKind::Detail) whole = std::max(kReportLevel, own - 1);
    use.ownRow = kind == BandKind::Detail;
    use.ahead = !use.ownRow && !IsComplete(kind, group, own);
    use.accumulator = totals_.Require(total, TotalKind::Sum, own, use.ahead);
    use.divisorAhead = !IsComplete(kind, group, whole);
    use.divisor = totals_.Require(total, TotalKind::Sum, whole, use.divisorAhead);
    return use;
  }
  if (total.kind == TotalKind::Running && IsPageBand(kind)) level = kPlacedLevel;
  use.ahead = total.kind != TotalKind::Running && level >= kReportLevel && !IsComplete(kind, group, level);
  use.accumulator = totals_.Require(total, total.kind, level, use.ahead);
  return use;
}

}  // namespace print
