// How forms are laid out: prompts beside their fields, groups, and the row of buttons.
#pragma once

#include <QGridLayout>
#include <initializer_list>
#include <string>

class QGroupBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace ui {

/// A prompt beside or above a field. The field gets the prompt's access key and its name for screen readers.
QLabel* Prompt(const std::string& text, QWidget& field);
/// A label without a function: for headings and explanations.
QLabel* Caption(const std::string& text);

/// Prompts in one column, fields in the next: the shape of most detail forms.
class FieldRows : public QGridLayout {
 public:
  FieldRows();
  /// Adds a row, with several fields side by side. A field of the row that should not stretch keeps its own
  /// width.
  void Row(const std::string& prompt, std::initializer_list<QWidget*> fields);
  /// Adds a field over the whole width.
  void Whole(QWidget& field);
};

QGroupBox* Group(const std::string& title, QLayout* content);
/// The buttons in the order given, at the right end of a row.
QHBoxLayout* ButtonRow(std::initializer_list<QWidget*> buttons);
/// The height of a text field in the font of this field. Combos have it too, and rows of labels, so that the
/// rows of fields side by side are level.
int FieldHeight(const QWidget& field);
/// The width of any date with its time.
int DateTimeWidth(const QWidget& field);
/// Gives the field room for so many characters of its font, digits or letters.
void SetWidth(QWidget& field, int characters);
/// The order of the Tab key.
void TabOrder(std::initializer_list<QWidget*> fields);

/// Widths that are the same in all windows, in characters.
inline constexpr int kDateWidth = 12;
inline constexpr int kNumberWidth = 10;
inline constexpr int kMoneyWidth = 14;
inline constexpr int kCodeWidth = 20;
inline constexpr int kTextWidth = 40;

}  // namespace ui
