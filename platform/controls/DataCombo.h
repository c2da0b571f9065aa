// A list to choose from that shows one column and stores another.
#pragma once

#include <QComboBox>
#include <functional>
#include <string>
#include <vector>

#include "platform/ado/Ado.h"
#include "platform/controls/BoundControl.h"
#include "platform/dao/Dao.h"

namespace ui {

/// Typing finds the entry that begins with the typed letters; Delete clears the choice.
class DataCombo : public QComboBox, public BoundControl {
 public:
  DataCombo(const char* name, std::string listField, std::string boundColumn);

  /// Fills the list with the rows of a recordset, in its order. Keeps the choice if the list still has its
  /// value. A null recordset empties the list.
  void Fill(dao::Recordset* rows);
  void Fill(ado::Recordset* rows);
  /// The stored value of the choice, with the bound column's type. The value that was shown last if the list
  /// does not have it; Null if nothing was ever chosen.
  rt::Value BoundValue() const { return value_; }
  /// Chooses as a user would.
  void Choose(const rt::Value& value);
  /// The text of the choice; empty without a choice.
  std::string Text() const { return currentText().toStdString(); }

  std::function<void()> onChange;
  std::function<bool()> onLeave;

  void ShowValue(const rt::Value& value) override;
  bool Changed() const override { return changed_; }
  rt::Value Content() const override { return value_; }
  void SetUnchanged() override { changed_ = false; }
  QWidget* Widget() override { return this; }
  /// As high as a text field.
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  template <class Rows>
  void FillFrom(Rows* rows);
  void Picked(int index);
  int IndexOf(const rt::Value& value) const;

  std::string listField_;
  std::string boundColumn_;
  std::vector<rt::Value> values_;
  rt::Value value_;
  bool changed_ = false;
};

}  // namespace ui
