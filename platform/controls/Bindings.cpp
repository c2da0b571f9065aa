#include "platform/controls/Bindings.h"

#include <QWidget>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/store/StoreError.h"

namespace ui {
namespace {

constexpr int kEmptyNotAllowed = 3315;

/// The message about a typed text that the column cannot store.
std::string Complaint(const std::string& label, const std::string& typed, store::ColumnType type,
                      int number) {
  const std::string field = label.empty() ? "this field" : "\"" + label + "\"";
  if (number == 3163) return "The text is too long for " + field + ".";
  std::string wanted = "a number";
  if (type == store::ColumnType::DateTime) wanted = "a date";
  if (type == store::ColumnType::Currency) wanted = "an amount";
  if (number == 6) return "'" + typed + "' is too large or too small for " + field + ".";
  return "'" + typed + "' is not " + wanted + ". Please check " + field + ".";
}

bool HoldsText(store::ColumnType type) {
  return type == store::ColumnType::Text || type == store::ColumnType::Memo;
}

}  // namespace

rt::Value ValueOf(const std::string& text, store::ColumnType type) {
  if (HoldsText(type)) return text;
  const std::string trimmed = rt::Trim(text);
  if (trimmed.empty()) return rt::Null{};
  const rt::Value typed(trimmed);
  switch (type) {
    case store::ColumnType::Boolean:
      return typed.AsBoolean();
    case store::ColumnType::Short:
      return typed.AsInteger();
    case store::ColumnType::Counter:
    case store::ColumnType::Long:
      return typed.AsLong();
    case store::ColumnType::Single:
      return typed.AsSingle();
    case store::ColumnType::Double:
      return typed.AsDouble();
    case store::ColumnType::Currency:
      return typed.AsCurrency();
    case store::ColumnType::DateTime:
      return typed.AsDate();
    default:
      throw rt::RuntimeError(13);
  }
}

void Bindings::Add(BoundControl& control, std::string column, std::string label) {
  bindings_.push_back({&control, std::move(column), std::move(label)});
}

void Bindings::Show(BoundRecord& record) {
  const bool row = record.HasRow();
  for (Binding& binding : bindings_) {
    const int field = record.FieldIndex(binding.column);
    if (field < 0) {
      binding.control->ShowValue(rt::Null{});
      continue;
    }
    const store::FieldInfo& info = record.Fields()[static_cast<std::size_t>(field)];
    if (info.type == store::ColumnType::Text && info.size > 0) binding.control->SetLimit(info.size);
    binding.control->ShowValue(row ? record.Get(field) : rt::Value());
  }
}

void Bindings::Store(BoundRecord& record) {
  for (Binding& binding : bindings_) {
    if (!binding.control->Changed()) continue;
    const int field = record.FieldIndex(binding.column);
    if (field < 0) continue;
    const store::ColumnType type = record.Fields()[static_cast<std::size_t>(field)].type;
    const rt::Value content = binding.control->Content();
    const auto refuse = [&](int number) {
      binding.control->Widget()->setFocus();
      throw BadContent(*binding.control, Complaint(binding.label, content.Shown(), type, number));
    };
    try {
      const rt::Value value =
          content.Type() == rt::ValueType::Text ? ValueOf(content.AsText(), type) : content;
      try {
        record.Set(field, value);
      } catch (const store::StoreError& error) {
        // A column that does not accept an empty text gets a Null.
        if (error.Number() != kEmptyNotAllowed) throw;
        record.Set(field, rt::Null{});
      }
    } catch (const rt::RuntimeError& error) {
      refuse(error.Number());
    } catch (const store::StoreError& error) {
      if (error.Number() != 3163 && error.Number() != 3421 && error.Number() != 6) throw;
      refuse(error.Number());
    }
  }
}

bool Bindings::Changed() const {
  for (const Binding& binding : bindings_)
    if (binding.control->Changed()) return true;
  return false;
}

}  // namespace ui
